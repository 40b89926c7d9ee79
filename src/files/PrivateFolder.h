#pragma once

#include <QString>

/// Makes the folder `path` and what is missing above it. The folder is for its owner only from the first moment, and
/// becomes so where it was there with wider rights. Any thread.
/// @return whether there is such a folder now.
[[nodiscard]] bool makePrivateFolder(const QString &path);
