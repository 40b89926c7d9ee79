#pragma once

#include <QWidget>

/// What the window shows before the first connect.
class WelcomePage : public QWidget
{
    Q_OBJECT
public:
    explicit WelcomePage(QWidget *parent = nullptr);

signals:
    void demoServerRequested();
};
