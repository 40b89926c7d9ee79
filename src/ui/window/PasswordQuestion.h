#pragma once

#include <QString>

#include <functional>

class QWidget;

/// Asks for the remote-console password of `host` in a sheet on `window`; an empty one cannot be given. `answered` is
/// not called when the sheet is dismissed. Main thread only.
void openPasswordQuestion(QWidget *window, const QString &host, std::function<void(const QString &)> answered);
