#include "RefreshTimer.h"

#include "Preferences.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QSpinBox>

#include <chrono>

RefreshTimer::RefreshTimer(Preferences &preferences, const Names &names, QWidget *parent)
    : QWidget(parent), m_isOn(new QCheckBox(tr("Refresh every"), this)), m_seconds(new QSpinBox(this))
{
    constexpr int longest = 86400; // a day
    m_isOn->setObjectName(names.isOn);
    m_isOn->setChecked(preferences.boolValue(names.isOn));
    m_seconds->setObjectName(names.seconds);
    m_seconds->setAccessibleName(names.interval);
    m_seconds->setRange(1, longest);
    m_seconds->setSuffix(tr(" s"));
    m_seconds->setValue(preferences.intValue(names.seconds, 1, longest));
    m_timer.setObjectName(names.timer);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_isOn);
    layout->addWidget(m_seconds);
    connect(m_isOn, &QCheckBox::toggled, this, [this, &preferences, key = names.isOn](bool isOn) {
        preferences.setValue(key, isOn);
        restart();
    });
    connect(m_seconds, &QSpinBox::valueChanged, this, [this, &preferences, key = names.seconds](int seconds) {
        preferences.setValue(key, seconds);
        restart();
    });
    connect(&m_timer, &QTimer::timeout, this, &RefreshTimer::due);
}

void RefreshTimer::restart()
{
    m_timer.stop();
    if (m_isOn->isChecked())
        m_timer.start(std::chrono::seconds(m_seconds->value()));
}
