#include "gui/KrHvcScreenPropertyWidget.h"

#include "gui/FormParts.h"
#include "host/KrPluginKeys.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QVariant>

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;

namespace {

constexpr int IntervalStep = 100; // milliseconds

} // namespace

KrHvcScreenPropertyWidget::KrHvcScreenPropertyWidget(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(createIntervalRow());
    layout->addWidget(createConfidenceGroup());
    layout->addLayout(createConcurrentRow());
    layout->addLayout(createRestrictionGrid());
    layout->addLayout(createMonitoringBox());
    layout->addItem(new QSpacerItem(16, 16, QSizePolicy::Minimum, QSizePolicy::Minimum));
    layout->addItem(createBottomSpacer());
    showSettings(ScreenSettings::ofNewScreen());
}

void KrHvcScreenPropertyWidget::loadValues()
{
    if (m_pluginData == nullptr)
        return;
    showSettings(ScreenSettings::fromStored(m_pluginData->toMap().value(Keys::PluginData).toMap()));
}

bool KrHvcScreenPropertyWidget::applyValues()
{
    if (m_pluginData == nullptr)
        return true;

    QVariantMap screen = m_pluginData->toMap();
    const std::optional<QVariantMap> edited
        = editedSettings(screen.value(Keys::PluginData).toMap(), enteredSettings());
    if (!edited)
        return true;

    screen.insert(Keys::PluginData, *edited);
    *m_pluginData = screen;
    emit screenValuesUpdated(screen.value(Keys::Id, -1).toInt(), {}); // may delete this
    return true;
}

QList<KrHvcScreenPropertyWidget::Field> KrHvcScreenPropertyWidget::fields() const
{
    return {
        {&ScreenSettings::interval, m_interval},
        {&ScreenSettings::faceDetectionConfidence, m_faceDetectionConfidence},
        {&ScreenSettings::faceDirectionConfidence, m_faceDirectionConfidence},
        {&ScreenSettings::ageConfidence, m_ageConfidence},
        {&ScreenSettings::genderConfidence, m_genderConfidence},
        {&ScreenSettings::concurrent, m_concurrent},
        {&ScreenSettings::eventSendingLimit, m_eventRestriction},
    };
}

void KrHvcScreenPropertyWidget::showSettings(const ScreenSettings &settings)
{
    const QList<Field> allFields = fields();
    for (const Field &field : allFields)
        field.spinBox->setValue(settings.*field.member);
    m_visibleMonitoring->setChecked(settings.displayMonitoring);
}

ScreenSettings KrHvcScreenPropertyWidget::enteredSettings() const
{
    ScreenSettings entered;
    const QList<Field> allFields = fields();
    for (const Field &field : allFields)
        entered.*field.member = field.spinBox->value();
    entered.displayMonitoring = m_visibleMonitoring->isChecked();
    return entered;
}

QBoxLayout *KrHvcScreenPropertyWidget::createIntervalRow()
{
    m_interval = createSpinBox(QStringLiteral("interval"), EditableInterval);
    m_interval->setSingleStep(IntervalStep);
    auto *row = new QHBoxLayout;
    row->addWidget(createBuddyLabel(tr("Getting Data Interval:"), m_interval));
    row->addWidget(m_interval);
    row->addWidget(new QLabel(tr("millisecond")));
    row->addItem(createRowSpacer(1, 1));
    return row;
}

QWidget *KrHvcScreenPropertyWidget::createConfidenceGroup()
{
    m_faceDetectionConfidence
        = createSpinBox(QStringLiteral("faceDetectionConfidence"), ConfidenceRange);
    m_faceDirectionConfidence
        = createSpinBox(QStringLiteral("faceDirectionConfidence"), ConfidenceRange);
    m_ageConfidence = createSpinBox(QStringLiteral("ageConfidence"), ConfidenceRange);
    m_genderConfidence = createSpinBox(QStringLiteral("genderConfidence"), ConfidenceRange);

    auto *group = new QGroupBox(tr("Confidence"));
    auto *grid = new QGridLayout(group);
    const auto addRow = [&](int row, const QString &text, QSpinBox *spinBox) {
        grid->addWidget(createBuddyLabel(text, spinBox), row, 0);
        grid->addWidget(spinBox, row, 1);
        grid->addWidget(new QLabel(tr("(0 - 1000)")), row, 2);
    };
    addRow(0, tr("Face Detection:"), m_faceDetectionConfidence);
    addRow(1, tr("Face Drection:"), m_faceDirectionConfidence);
    addRow(2, tr("Age Detection:"), m_ageConfidence);
    addRow(3, tr("Gender Detection:"), m_genderConfidence);
    return group;
}

QBoxLayout *KrHvcScreenPropertyWidget::createConcurrentRow()
{
    m_concurrent = createSpinBox(QStringLiteral("concurrent"), ConcurrentRange);
    auto *row = new QHBoxLayout;
    row->addWidget(createBuddyLabel(tr("Concurrent Event:"), m_concurrent));
    row->addWidget(m_concurrent);
    row->addWidget(new QLabel(tr("(1 - 20)")));
    row->addItem(createRowSpacer(1, 1));
    return row;
}

QGridLayout *KrHvcScreenPropertyWidget::createRestrictionGrid()
{
    m_eventRestriction
        = createSpinBox(QStringLiteral("eventRestriction"), EditableEventSendingLimit);
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(2);
    grid->addWidget(createBuddyLabel(tr("Event Restriction:"), m_eventRestriction), 0, 0);
    grid->addWidget(m_eventRestriction, 0, 1);
    grid->addWidget(new QLabel(tr("msec.")), 0, 2);
    grid->addItem(createRowSpacer(1, 1), 0, 3);
    grid->addWidget(
        createWrappedNote(
            tr("Until the specified time elapses, the same screen target event is discarded."),
            QStringLiteral("margin-left: 3px;color: midnightblue;")),
        1, 0, 1, 4);
    return grid;
}

QBoxLayout *KrHvcScreenPropertyWidget::createMonitoringBox()
{
    m_visibleMonitoring = new QCheckBox(tr("Visible Monitoring"));
    m_visibleMonitoring->setObjectName(QStringLiteral("visibleMonitoring"));
    auto *box = new QVBoxLayout;
    box->setSpacing(0);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(m_visibleMonitoring);
    box->addWidget(
        createWrappedNote(tr("If it is checked, HVC monitoring will be displayed with this Screen. "
                             "If it is not checked, this Screen will not be displayed."),
            QStringLiteral("margin-left: 3px; color: midnightblue;")));
    return box;
}

} // namespace PluginKrHvcP2
