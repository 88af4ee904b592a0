#include "demo/desk/ViewerForm.h"

#include "demo/desk/ViewerDesk.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

namespace Desk {

namespace {

using Simulation::Gender;

constexpr int NotTold = -1; // as an age

/// A field with a label that leads to it.
template <typename Field>
Field *addField(QFormLayout *layout, const QString &label, const QString &name)
{
    auto field = new Field;
    field->setObjectName(name);
    layout->addRow(label, field);
    return field;
}

template <typename Value>
void addChoice(QComboBox *box, const QString &text, Value value)
{
    box->addItem(text, static_cast<int>(value));
}

void choose(QComboBox *box, int value)
{
    box->setCurrentIndex(box->findData(value));
}

} // namespace

ViewerForm::ViewerForm(ViewerDesk *desk, QWidget *parent)
    : QWidget(parent)
    , m_desk(desk)
{
    setAccessibleName(tr("Selected viewer"));
    auto layout = new QFormLayout(this);

    m_age = addField<QSpinBox>(layout, tr("&Age"), QStringLiteral("age"));
    m_age->setRange(NotTold, Simulation::Sensor::MaxAge);
    m_age->setSpecialValueText(tr("not told"));

    m_gender = addField<QComboBox>(layout, tr("&Gender"), QStringLiteral("gender"));
    addChoice(m_gender, tr("female"), Gender::Female);
    addChoice(m_gender, tr("male"), Gender::Male);
    addChoice(m_gender, tr("not told"), Gender::Unknown);

    m_lr = addAngle(layout, tr("Loo&ks sideways"), QStringLiteral("lr"));
    m_ud = addAngle(layout, tr("Looks &up"), QStringLiteral("ud"));
    m_roll = addAngle(layout, tr("Tilts t&he head"), QStringLiteral("roll"));

    m_settled = addField<QCheckBox>(layout, QString(), QStringLiteral("settled"));
    m_settled->setText(tr("Sett&led"));
    m_settled->setToolTip(
        tr("The sensor has seen the face long enough to stand by age and gender."));

    m_noise = addField<QComboBox>(layout, tr("&Noise"), QStringLiteral("noise"));
    addChoice(m_noise, tr("none"), PlacedViewer::NoNoise);
    addChoice(m_noise, tr("some"), PlacedViewer::SomeNoise);
    addChoice(m_noise, tr("much"), PlacedViewer::MuchNoise);
    m_noise->setToolTip(tr("How far the sensor's readings are off."));

    m_remove = addField<QPushButton>(layout, QString(), QStringLiteral("remove"));
    m_remove->setText(tr("Re&move"));

    connectFields();
    showViewer();
}

void ViewerForm::showEvent(QShowEvent *event)
{
    showViewer(); // what has been missed
    QWidget::showEvent(event);
}

QSpinBox *ViewerForm::addAngle(QFormLayout *layout, const QString &label, const QString &name)
{
    auto angle = addField<QSpinBox>(layout, label, name);
    angle->setRange(-Simulation::Sensor::MaxAngle, Simulation::Sensor::MaxAngle);
    angle->setSingleStep(5);
    angle->setSuffix(QStringLiteral("\u00b0"));
    return angle;
}

void ViewerForm::connectFields()
{
    for (QSpinBox *box : {m_age, m_lr, m_ud, m_roll}) {
        box->setKeyboardTracking(false); // nobody is 4 on the way to 47
        connect(box, QOverload<int>::of(&QSpinBox::valueChanged), this, &ViewerForm::takeFields);
    }
    for (QComboBox *box : {m_gender, m_noise}) {
        connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ViewerForm::takeFields);
    }
    connect(m_settled, &QCheckBox::toggled, this, &ViewerForm::takeFields);
    connect(m_remove, &QPushButton::clicked, this, [this] { m_desk->remove(m_desk->selected()); });

    const auto update = [this] {
        if (isVisible())
            showViewer();
    };
    connect(m_desk, &ViewerDesk::changed, this, update);
    connect(m_desk, &ViewerDesk::selectionChanged, this, update);
}

void ViewerForm::showViewer()
{
    const PlacedViewer viewer = m_desk->viewer(m_desk->selected());
    setEnabled(viewer.isValid());
    if (!viewer.isValid())
        return;
    // Half a viewer must not go back to the desk.
    const QSignalBlocker age(m_age);
    const QSignalBlocker gender(m_gender);
    const QSignalBlocker lr(m_lr);
    const QSignalBlocker ud(m_ud);
    const QSignalBlocker roll(m_roll);
    const QSignalBlocker settled(m_settled);
    const QSignalBlocker noise(m_noise);
    m_age->setValue(viewer.age.value_or(NotTold));
    choose(m_gender, static_cast<int>(viewer.gender));
    m_lr->setValue(viewer.direction.lr);
    m_ud->setValue(viewer.direction.ud);
    m_roll->setValue(viewer.direction.roll);
    m_settled->setChecked(viewer.settled);
    choose(m_noise, viewer.noise);
}

void ViewerForm::takeFields()
{
    PlacedViewer viewer = m_desk->viewer(m_desk->selected());
    viewer.age = m_age->value() == NotTold ? std::nullopt : std::make_optional(m_age->value());
    viewer.gender = static_cast<Gender>(m_gender->currentData().toInt());
    viewer.direction = {m_lr->value(), m_ud->value(), m_roll->value()};
    viewer.settled = m_settled->isChecked();
    viewer.noise = static_cast<PlacedViewer::Noise>(m_noise->currentData().toInt());
    m_desk->change(viewer);
}

} // namespace Desk
