#pragma once

class KelMapRotation;
class KelMessageRotation;

/// The rotations that the administrator keeps. Both outlive the window.
struct Rotations {
    KelMapRotation &maps;
    KelMessageRotation &messages;
};
