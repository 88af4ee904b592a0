#pragma once

#include "gui/AudienceRules.h"

#include <QMap>
#include <QVariant>
#include <QVector>
#include <QWidget>

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace PluginKrHvcP2 {

/// Edits one detection content of a screen, or prepares a new one in a free age range.
///
/// Message boxes and signals may run host code that deletes the widget; its functions do not touch
/// it afterwards.
class KrHvcContentPropertyWidget : public QWidget
{
    Q_OBJECT

public:
    explicit KrHvcContentPropertyWidget(QWidget *parent = nullptr);
    ~KrHvcContentPropertyWidget() override;

    /// The screen's parameter map; not owned, null for none.
    void setPluginData(QVariant *pluginData) { m_pluginData = pluginData; }

    /// Proposes a new content. False, with a message, when no age range is free.
    bool prepareNewContent();

    /// Shows the content at the zero-based @p seqIndex. For one that is not there the fields stay:
    /// behind the last they are stored as a new content of that index, below 0 not at all.
    void loadContent(int seqIndex);

    /// Writes an edited content to the map, or asks for a new one to be added. False, with a
    /// message and the focus on the faulty field, when it would collide with another content.
    bool validateAndStore();

    // The host and the dialogs connect by name and index: keep the order of signals and slots.
signals:
    void screenValuesUpdated(int screenId, QList<int> seqIndexList); ///< a content was written
    void requestAddContents(int screenId, QMap<int, QVariant> contents); ///< entries by index
    void rejected(); ///< never emitted

private slots:
    void onAgeMinSpinBoxValueChanged(int value);
    void onAgeMaxSpinBoxValueChanged(int value);
    void onAgeMinSpinBoxEditingFinished();
    void onAgeMaxSpinBoxEditingFinished();
    void onGenerateNameButtonClicked(bool checked = false);
    void onFindNextRangeButtonClicked(bool checked = false);
    void onGenderComboBoxIndexChanged(int index);

private:
    QBoxLayout *createSequenceRow();
    QBoxLayout *createNameRow();
    QBoxLayout *createAgeRow();
    QBoxLayout *createGenderRow();

    bool hasParameters() const;
    QVariantMap parameters() const;
    QVariantList contents() const;
    Audience enteredRange() const;
    void showRange(const Audience &range);
    QString automaticName() const;
    void updateAutomaticName();
    void showInformation(const QString &text, const QString &styleSheet);
    void showRefusal(Refusal refusal);
    void refuse(const QString &title, const QString &text, QWidget *faultyField);
    void storeExisting(QVariantList contents);
    void storeNew();

    // All widgets are children of this.
    QLabel *m_information = nullptr;
    QLabel *m_sequenceNumber = nullptr;
    QSpinBox *m_ageMin = nullptr;
    QSpinBox *m_ageMax = nullptr;
    QComboBox *m_gender = nullptr; // Gender codes as Qt::UserRole data
    QCheckBox *m_default = nullptr;
    QLineEdit *m_name = nullptr;
    QCheckBox *m_auto = nullptr;
    QVariant *m_pluginData = nullptr;
    int m_editIndex = -1; // in "contents"; their count, or more, for a new content
    QVector<Audience> m_freeRanges; // and those left by "Find Range"
    bool m_updating = false; // the program, not the user, changes the fields
};

} // namespace PluginKrHvcP2
