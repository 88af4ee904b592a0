#include "gui/KrHvcScreenPropertyWidget.h"

#include "core/screen/ScreenSettings.h"
#include "gui/BuddyLabel.h"
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

QSpinBox *createSpinBox(const QString &name, int minimum, int maximum, int step, int value)
{
    auto *spinBox = new QSpinBox;
    spinBox->setObjectName(name);
    spinBox->setRange(minimum, maximum);
    spinBox->setSingleStep(step);
    spinBox->setValue(value);
    spinBox->setAlignment(Qt::AlignRight);
    return spinBox;
}

QSpinBox *createConfidenceSpinBox(const QString &name)
{
    return createSpinBox(name, 0, 1000, 1, 0);
}

/// A small text below what it explains. Layouts reckon with a wrapped text's height only while
/// they have room to spare; this one insists on it, so that nothing around it is squeezed.
class Note : public QLabel
{
public:
    // The colour in the style sheet is fixed, also where a dark palette makes it hard to read.
    Note(const QString &text, const QString &styleSheet)
        : QLabel(text)
    {
        setWordWrap(true);
        QFont smaller = font();
        if (smaller.pointSize() > 1) // -1 for fonts set in pixels
            smaller.setPointSize(smaller.pointSize() - 1);
        setFont(smaller);
        setStyleSheet(styleSheet);
    }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QLabel::resizeEvent(event);
        setMinimumHeight(heightForWidth(width()));
    }
};

QSpacerItem *createRowSpacer()
{
    return new QSpacerItem(1, 1, QSizePolicy::Expanding, QSizePolicy::Minimum);
}

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
    layout->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding));
}

void KrHvcScreenPropertyWidget::loadValues()
{
    if (m_pluginData == nullptr)
        return;
    const QVariantMap settings = m_pluginData->toMap().value(Keys::PluginData).toMap();
    const QList<Field> allFields = fields();
    for (const Field &field : allFields)
        field.spinBox->setValue(settings.value(field.key, field.loadDefault).toInt());
    m_visibleMonitoring->setChecked(
        isTrueText(settings.value(Keys::DisplayMonitoring, Keys::False)));
}

bool KrHvcScreenPropertyWidget::applyValues()
{
    if (m_pluginData == nullptr)
        return true;

    QVariantMap screen = m_pluginData->toMap();
    QVariantMap settings = screen.value(Keys::PluginData).toMap();
    bool changed = false;
    const QList<Field> allFields = fields();
    for (const Field &field : allFields) {
        const int value = field.spinBox->value();
        if (settings.value(field.key, -1).toInt() == value)
            continue;
        settings.insert(field.key, value);
        changed = true;
    }
    const bool visible = m_visibleMonitoring->isChecked();
    if (isTrueText(settings.value(Keys::DisplayMonitoring, Keys::False)) != visible) {
        settings.insert(Keys::DisplayMonitoring, visible ? Keys::True : Keys::False);
        changed = true;
    }
    if (!changed)
        return true;

    screen.insert(Keys::PluginData, settings);
    *m_pluginData = screen;
    emit screenValuesUpdated(screen.value(Keys::Id, -1).toInt(), {}); // may delete this
    return true;
}

QList<KrHvcScreenPropertyWidget::Field> KrHvcScreenPropertyWidget::fields() const
{
    return {
        {Keys::Interval, m_interval, 500},
        {Keys::FaceDetectionConfidence, m_faceDetectionConfidence, 0},
        {Keys::FaceDirectionConfidence, m_faceDirectionConfidence, 0},
        {Keys::AgeConfidence, m_ageConfidence, 0},
        {Keys::GenderConfidence, m_genderConfidence, 0},
        {Keys::Concurrent, m_concurrent, 1},
        {Keys::EventSendingLimit, m_eventRestriction, 5000},
    };
}

QBoxLayout *KrHvcScreenPropertyWidget::createIntervalRow()
{
    m_interval = createSpinBox(QStringLiteral("interval"), 10, 360000, 100, 1000);
    auto *row = new QHBoxLayout;
    row->addWidget(createBuddyLabel(tr("Getting Data Interval:"), m_interval));
    row->addWidget(m_interval);
    row->addWidget(new QLabel(tr("millisecond")));
    row->addItem(createRowSpacer());
    return row;
}

QWidget *KrHvcScreenPropertyWidget::createConfidenceGroup()
{
    m_faceDetectionConfidence = createConfidenceSpinBox(QStringLiteral("faceDetectionConfidence"));
    m_faceDirectionConfidence = createConfidenceSpinBox(QStringLiteral("faceDirectionConfidence"));
    m_ageConfidence = createConfidenceSpinBox(QStringLiteral("ageConfidence"));
    m_genderConfidence = createConfidenceSpinBox(QStringLiteral("genderConfidence"));

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
    m_concurrent = createSpinBox(QStringLiteral("concurrent"), 1, 20, 1, 1);
    auto *row = new QHBoxLayout;
    row->addWidget(createBuddyLabel(tr("Concurrent Event:"), m_concurrent));
    row->addWidget(m_concurrent);
    row->addWidget(new QLabel(tr("(1 - 20)")));
    row->addItem(createRowSpacer());
    return row;
}

QGridLayout *KrHvcScreenPropertyWidget::createRestrictionGrid()
{
    m_eventRestriction = createSpinBox(QStringLiteral("eventRestriction"), 0, 86400000, 1, 5000);
    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(2);
    grid->addWidget(createBuddyLabel(tr("Event Restriction:"), m_eventRestriction), 0, 0);
    grid->addWidget(m_eventRestriction, 0, 1);
    grid->addWidget(new QLabel(tr("msec.")), 0, 2);
    grid->addItem(createRowSpacer(), 0, 3);
    grid->addWidget(
        new Note(tr("Until the specified time elapses, the same screen target event is discarded."),
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
        new Note(tr("If it is checked, HVC monitoring will be displayed with this Screen. "
                    "If it is not checked, this Screen will not be displayed."),
            QStringLiteral("margin-left: 3px; color: midnightblue;")));
    return box;
}

} // namespace PluginKrHvcP2
