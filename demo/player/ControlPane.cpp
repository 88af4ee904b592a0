#include "demo/player/ControlPane.h"

#include "demo/player/HostPane.h"
#include "demo/player/PaneLabels.h"
#include "demo/player/ShownText.h"
#include "demo/player/StagePlayer.h"
#include "host/KrPluginStatus.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace Player {

namespace {

constexpr int Margin = 14;

QColor statusColor(int status)
{
    switch (status) {
    case Kora::Status::Started:
        return {0x2f, 0x9e, 0x5b};
    case Kora::Status::Starting:
    case Kora::Status::Stopping:
    case Kora::Status::Initializing:
        return {0xc9, 0x8a, 0x1b};
    case Kora::Status::Paused:
        return {0x3a, 0x78, 0xc2};
    default:
        return {0x55, 0x60, 0x6c};
    }
}

} // namespace

ControlPane::ControlPane(StagePlayer *player, StageDesk *desk, QWidget *parent)
    : QWidget(parent)
    , m_player(player)
{
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Margin * 2 / 3);
    layout->addWidget(createHeader());
    layout->addWidget(createStatusRow());
    layout->addWidget(new HostPane(player, desk, this));
    layout->addWidget(createControls());

    connect(&player->host(), &PluginHost::statusChanged, this, &ControlPane::showStatus);
    connect(player, &StagePlayer::currentChanged, this, &ControlPane::showCurrent);
    showStatus(player->host().status());
    showCurrent();
}

void ControlPane::showPluginInformation()
{
    const PluginInformation plugin = m_player->host().information();
    m_icon->setPixmap(QPixmap::fromImage(plugin.icon));
    m_name->setText(QStringLiteral("%1 %2").arg(plugin.name, plugin.version));
    m_vendor->setText(plugin.vendor);
    m_vendor->setToolTip(plugin.copyright + QLatin1Char('\n') + plugin.url);
    m_description->setText(plugin.description);
}

QWidget *ControlPane::createHeader()
{
    auto *const header = new QWidget(this);
    m_icon = createLabel(QStringLiteral("icon"), header);
    m_icon->setFixedSize(44, 44);
    m_icon->setAlignment(Qt::AlignCenter);
    // The plug-in's icon may be dark.
    m_icon->setStyleSheet(QStringLiteral("background-color: #e4e8ec; border-radius: 8px;"));
    m_name = createLabel(QStringLiteral("name"), header);
    m_name->setFont(scaled(m_name->font(), 1.35, QFont::Bold));
    m_vendor = createLabel(QStringLiteral("vendor"), header);
    makeFaint(m_vendor);
    m_description = createLabel(QStringLiteral("description"), header);
    m_description->setWordWrap(true);
    m_description->setFont(scaled(m_description->font(), 0.85, QFont::Normal));
    makeFaint(m_description);

    auto *const names = new QVBoxLayout;
    names->setSpacing(0);
    names->addWidget(m_name);
    names->addWidget(m_vendor);
    auto *const top = new QHBoxLayout;
    top->setSpacing(Margin);
    top->addWidget(m_icon);
    top->addLayout(names, 1);
    auto *const layout = new QVBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(top);
    layout->addWidget(m_description);
    return header;
}

QWidget *ControlPane::createStatusRow()
{
    auto *const row = new QWidget(this);
    m_status = createLabel(QStringLiteral("status"), row);
    m_status->setFont(scaled(m_status->font(), 1.0, QFont::DemiBold));
    m_current = createLabel(QStringLiteral("current"), row);
    m_current->setFont(scaled(m_current->font(), 1.1, QFont::DemiBold));
    m_current->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Margin);
    layout->addWidget(m_status);
    layout->addWidget(m_current, 1);
    return row;
}

QWidget *ControlPane::createControls()
{
    auto *const row = new QWidget(this);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    PluginHost *const host = &m_player->host();
    const auto add = [&](const QString &name, const QString &text, bool (PluginHost::*call)()) {
        auto *const button = new QPushButton(text, row);
        button->setObjectName(name);
        connect(button, &QPushButton::clicked, host, [host, call] { (host->*call)(); });
        layout->addWidget(button);
    };
    add(QStringLiteral("start"), tr("&Start"), &PluginHost::start);
    add(QStringLiteral("stop"), tr("S&top"), &PluginHost::stop);
    add(QStringLiteral("pause"), tr("&Pause"), &PluginHost::pause);
    add(QStringLiteral("reload"), tr("&Reload"), &PluginHost::reload);
    return row;
}

void ControlPane::showStatus(int status)
{
    m_status->setText(
        QStringLiteral("%1  %2").arg(QString::number(status), PluginHost::statusText(status)));
    m_status->setStyleSheet(
        QStringLiteral("background-color: %1; color: white; border-radius: 9px; padding: 3px 10px;")
            .arg(statusColor(status).name()));
}

void ControlPane::showCurrent()
{
    const StageContent &content = m_player->current();
    m_current->setText(content.number == 0
            ? tr("Nothing switched yet")
            : QStringLiteral("#%1  %2").arg(QString::number(content.number), content.name));
    m_current->setToolTip(plainToolTip(m_current->text()));
}

} // namespace Player
