#include "gui/KrHvcContentPropertyWidget.h"

#include "core/screen/ContentEntry.h"
#include "gui/FormParts.h"
#include "gui/MessageBox.h"
#include "host/KrPluginKeys.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace PluginKrHvcP2 {

namespace Keys = Kora::Keys;

namespace {

constexpr IntegerRange EditableAges{LowestAge, HighestAge};

/// Where the search for a free range starts on a screen without contents.
constexpr Audience FirstProposal{10, 19, BothGenders, false};

QWidget *createSeparator()
{
    auto *separator = new QWidget;
    separator->setFixedHeight(1);
    separator->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    separator->setStyleSheet(
        QStringLiteral("background-color: darkgray; margin-top: 10px; margin-bottom: 10px;"));
    return separator;
}

QString genderName(int gender)
{
    switch (gender) {
    case Male:
        return KrHvcContentPropertyWidget::tr("Male");
    case Female:
        return KrHvcContentPropertyWidget::tr("Female");
    case BothGenders:
        return KrHvcContentPropertyWidget::tr("Both");
    default:
        return KrHvcContentPropertyWidget::tr("Unknown");
    }
}

} // namespace

KrHvcContentPropertyWidget::KrHvcContentPropertyWidget(QWidget *parent)
    : QWidget(parent)
{
    m_information = new QLabel;
    m_information->setObjectName(QStringLiteral("information"));
    m_default = new QCheckBox(tr("Set this sequence as gender default"));
    m_default->setObjectName(QStringLiteral("default"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_information);
    layout->addWidget(createSeparator());
    layout->addLayout(createSequenceRow());
    layout->addLayout(createNameRow());
    layout->addItem(createFixedSpacer(10));
    layout->addLayout(createAgeRow());
    layout->addWidget(createNote(tr("The age range that can be set is 0 to 75 years old.\n"
                                    " If targeting over 75 years old, set it to 75."),
        QStringLiteral("color: midnightblue")));
    layout->addItem(createFixedSpacer(10));
    layout->addLayout(createGenderRow());
    layout->addItem(createFixedSpacer(10));
    layout->addWidget(m_default);
    layout->addItem(createFixedSpacer(16));
    layout->addItem(createBottomSpacer());

    connect(m_ageMin, &QSpinBox::editingFinished, this,
        &KrHvcContentPropertyWidget::onAgeMinSpinBoxEditingFinished);
    connect(m_ageMax, &QSpinBox::editingFinished, this,
        &KrHvcContentPropertyWidget::onAgeMaxSpinBoxEditingFinished);
    connect(m_gender, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        &KrHvcContentPropertyWidget::onGenderComboBoxIndexChanged);
}

KrHvcContentPropertyWidget::~KrHvcContentPropertyWidget()
{
    // The base class closes a visible window, which finishes an edit: too late for the slots.
    m_ageMin->disconnect(this);
    m_ageMax->disconnect(this);
}

bool KrHvcContentPropertyWidget::prepareNewContent()
{
    showInformation(tr("New HVC detection setting will be added."),
        QStringLiteral("color: green; font-weight: bold;"));

    const QVector<Audience> ranges = contentRanges(contents());
    m_freeRanges = freeRanges(ranges);
    const std::optional<Audience> proposal
        = nextRange(ranges.isEmpty() ? FirstProposal : ranges.last(), m_freeRanges);
    if (!proposal) {
        showMessageBox(
            this, QMessageBox::Critical, {}, tr("There is not an avalable range of age."));
        return false;
    }

    const QScopedValueRollback<bool> updating(m_updating, true);
    m_editIndex = ranges.size();
    m_sequenceNumber->setNum(m_editIndex + 1);
    showRange(*proposal);
    m_name->setText(automaticName());
    m_default->setChecked(false);
    return true;
}

void KrHvcContentPropertyWidget::loadContent(int seqIndex)
{
    showInformation(tr("Here you can set HVC detection range."),
        QStringLiteral("color: black; font-weight: normal;"));

    const QVariantList entries = contents();
    m_freeRanges = freeRanges(contentRanges(entries));
    m_editIndex = seqIndex;
    if (seqIndex < 0 || seqIndex >= entries.size() || m_updating)
        return;

    const QScopedValueRollback<bool> updating(m_updating, true);
    const QVariantMap entry = entries.at(seqIndex).toMap();
    Audience range = audienceForEditing(entry);
    range.ageMin = std::min(range.ageMin, range.ageMax);
    range.isDefault = isShownAsDefault(entry);
    m_sequenceNumber->setNum(seqIndex + 1);
    showRange(range);
    m_default->setChecked(range.isDefault);

    QString name = nameForEditing(entry);
    if (name.isEmpty()) {
        name = tr("%1 - %2 yeas old (%3)")
                   .arg(QString::number(range.ageMin), QString::number(range.ageMax),
                       genderName(range.gender));
    }
    m_name->setText(name);
}

bool KrHvcContentPropertyWidget::validateAndStore()
{
    QVariantList others = contents();
    const QVariantList entries = others;
    if (!hasParameters() || m_editIndex < 0)
        return false;
    const bool isExisting = m_editIndex < entries.size();
    if (isExisting)
        others.removeAt(m_editIndex);

    const Refusal refusal = findRefusal(m_name->text(), enteredRange(), others);
    if (refusal != Refusal::None) {
        showRefusal(refusal);
        return false;
    }

    // Last: the receivers of their signals may delete this.
    if (isExisting)
        storeExisting(entries);
    else
        storeNew();
    return true;
}

void KrHvcContentPropertyWidget::onAgeMinSpinBoxValueChanged(int value)
{
    if (m_updating)
        return;
    const QScopedValueRollback<bool> updating(m_updating, true);
    if (value > m_ageMax->value())
        m_ageMin->setValue(m_ageMax->value());
    updateAutomaticName();
}

void KrHvcContentPropertyWidget::onAgeMaxSpinBoxValueChanged(int value)
{
    if (m_updating)
        return;
    const QScopedValueRollback<bool> updating(m_updating, true);
    if (value < m_ageMin->value())
        m_ageMax->setValue(m_ageMin->value());
    updateAutomaticName();
}

void KrHvcContentPropertyWidget::onAgeMinSpinBoxEditingFinished()
{
    onAgeMinSpinBoxValueChanged(m_ageMin->value());
}

void KrHvcContentPropertyWidget::onAgeMaxSpinBoxEditingFinished()
{
    onAgeMaxSpinBoxValueChanged(m_ageMax->value());
}

void KrHvcContentPropertyWidget::onGenerateNameButtonClicked(bool /*checked*/)
{
    m_name->setText(automaticName());
}

void KrHvcContentPropertyWidget::onFindNextRangeButtonClicked(bool /*checked*/)
{
    const Audience current = enteredRange();
    const std::optional<Audience> next = nextRange(current, m_freeRanges);
    if (!next) {
        showMessageBox(this, QMessageBox::Warning, tr("Not Found"),
            tr("There is not an available next range of age."));
        return;
    }
    if (!m_updating) {
        const QScopedValueRollback<bool> updating(m_updating, true);
        showRange(*next);
        m_default->setChecked(next->isDefault);
        updateAutomaticName();
    }
    if (!m_freeRanges.contains(current))
        m_freeRanges.append(current); // so that the user can come back to it
}

void KrHvcContentPropertyWidget::onGenderComboBoxIndexChanged(int /*index*/)
{
    if (!m_updating)
        updateAutomaticName();
}

QBoxLayout *KrHvcContentPropertyWidget::createSequenceRow()
{
    m_sequenceNumber = new QLabel;
    m_sequenceNumber->setObjectName(QStringLiteral("sequenceNumber"));
    auto *row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("Sequence #")));
    row->addWidget(m_sequenceNumber);
    row->addItem(createRowSpacer(16, 16));
    return row;
}

QBoxLayout *KrHvcContentPropertyWidget::createNameRow()
{
    m_name = new QLineEdit;
    m_name->setObjectName(QStringLiteral("name"));
    m_auto = new QCheckBox(tr("Auto"));
    m_auto->setObjectName(QStringLiteral("auto"));
    m_auto->setChecked(true);
    auto *row = new QHBoxLayout;
    row->addWidget(createBuddyLabel(tr("Name:"), m_name));
    row->addWidget(m_name);
    row->addWidget(m_auto);
    return row;
}

QBoxLayout *KrHvcContentPropertyWidget::createAgeRow()
{
    m_ageMin = createSpinBox(QStringLiteral("ageMin"), EditableAges);
    m_ageMin->setValue(20);
    m_ageMax = createSpinBox(QStringLiteral("ageMax"), EditableAges);
    m_ageMax->setValue(30);
    auto *findRange = new QPushButton(tr("Find Range"));
    findRange->setObjectName(QStringLiteral("findRange"));
    connect(findRange, &QPushButton::clicked, this,
        &KrHvcContentPropertyWidget::onFindNextRangeButtonClicked);

    auto *row = new QHBoxLayout;
    row->addWidget(createBuddyLabel(tr("Age range:"), m_ageMin));
    row->addWidget(m_ageMin);
    row->addWidget(createBuddyLabel(tr("-"), m_ageMax));
    row->addWidget(m_ageMax);
    row->addWidget(new QLabel(tr("years old")));
    row->addWidget(findRange);
    row->addItem(createRowSpacer(1, 16));
    return row;
}

QBoxLayout *KrHvcContentPropertyWidget::createGenderRow()
{
    m_gender = new QComboBox;
    m_gender->setObjectName(QStringLiteral("gender"));
    for (const int gender : {BothGenders, Female, Male})
        m_gender->addItem(genderName(gender), gender);
    auto *row = new QHBoxLayout;
    row->addWidget(createBuddyLabel(tr("Gender:"), m_gender));
    row->addWidget(m_gender);
    row->addItem(createRowSpacer(16, 16));
    return row;
}

bool KrHvcContentPropertyWidget::hasParameters() const
{
    return m_pluginData != nullptr && !m_pluginData->isNull();
}

QVariantMap KrHvcContentPropertyWidget::parameters() const
{
    return hasParameters() ? m_pluginData->toMap() : QVariantMap();
}

QVariantList KrHvcContentPropertyWidget::contents() const
{
    return parameters().value(Keys::Contents).toList();
}

Audience KrHvcContentPropertyWidget::enteredRange() const
{
    return {m_ageMin->value(), m_ageMax->value(), m_gender->currentData().toInt(),
        m_default->isChecked()};
}

void KrHvcContentPropertyWidget::showRange(const Audience &range)
{
    m_ageMin->setValue(range.ageMin);
    m_ageMax->setValue(range.ageMax);
    const int genderItem = m_gender->findData(range.gender);
    if (genderItem >= 0)
        m_gender->setCurrentIndex(genderItem);
}

QString KrHvcContentPropertyWidget::automaticName() const
{
    const Audience range = enteredRange();
    return tr("%1 - %2 years old (%3)")
        .arg(
            QString::number(range.ageMin), QString::number(range.ageMax), genderName(range.gender));
}

void KrHvcContentPropertyWidget::updateAutomaticName()
{
    if (m_auto->isChecked())
        m_name->setText(automaticName());
}

void KrHvcContentPropertyWidget::showInformation(const QString &text, const QString &styleSheet)
{
    m_information->setText(text);
    m_information->setStyleSheet(styleSheet);
}

void KrHvcContentPropertyWidget::showRefusal(Refusal refusal)
{
    switch (refusal) {
    case Refusal::None:
        return;
    case Refusal::NameInUse:
        refuse(tr("Duplicate Name"),
            tr("The name \"%1\" is already in use.\nPlease specify another name.")
                .arg(m_name->text()),
            m_name);
        return;
    case Refusal::AgesInUse:
        refuse(tr("Including Age Range"),
            tr("The specified age range is included in the other specified range.\n"
               "Please specify again."),
            m_ageMin);
        return;
    case Refusal::DefaultInUse:
        refuse(tr("Can not be default"),
            tr("Gender(%1) has already defaulted.").arg(genderName(enteredRange().gender)),
            m_default);
        return;
    }
}

void KrHvcContentPropertyWidget::refuse(
    const QString &title, const QString &text, QWidget *faultyField)
{
    const QPointer<QWidget> field(faultyField);
    showMessageBox(this, QMessageBox::Critical, title, text);
    if (!field)
        return;
    field->setFocus();
    if (auto *lineEdit = qobject_cast<QLineEdit *>(field))
        lineEdit->selectAll();
    else if (auto *spinBox = qobject_cast<QSpinBox *>(field))
        spinBox->selectAll();
}

void KrHvcContentPropertyWidget::storeExisting(QVariantList contents)
{
    const QVariantMap entry = contents.at(m_editIndex).toMap();
    const QString name = m_name->text();
    const Audience entered = enteredRange();
    if (!isChanged(entry, name, entered))
        return;

    const int index = m_editIndex;
    QVariantMap screen = parameters();
    contents.replace(index, editedEntry(entry, name, entered));
    screen.insert(Keys::Contents, contents);
    *m_pluginData = screen;
    emit screenValuesUpdated(screen.value(Keys::Id, -1).toInt(), {index});
}

void KrHvcContentPropertyWidget::storeNew()
{
    const QVariantMap entry = newEntry(m_name->text(), enteredRange());
    emit requestAddContents(parameters().value(Keys::Id, -1).toInt(), {{m_editIndex, entry}});
}

} // namespace PluginKrHvcP2
