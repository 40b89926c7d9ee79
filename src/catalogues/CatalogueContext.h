#pragma once

class Alerts;
class KelServer;

/// What a catalogued setting needs to read and write its variable. Both outlive every setting.
struct CatalogueContext {
    KelServer &server;
    Alerts &alerts;
};
