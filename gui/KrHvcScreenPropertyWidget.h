#pragma once

#include "core/screen/ScreenSettings.h"

#include <QList>
#include <QWidget>

class QBoxLayout;
class QCheckBox;
class QGridLayout;
class QSpinBox;
class QVariant;

namespace PluginKrHvcP2 {

/// Edits the settings of one screen: "plugindata" in its parameter map.
class KrHvcScreenPropertyWidget : public QWidget
{
    Q_OBJECT

public:
    explicit KrHvcScreenPropertyWidget(QWidget *parent = nullptr);

    /// The screen's parameter map; not owned, null for none. A null value counts as an empty map.
    void setPluginData(QVariant *pluginData) { m_pluginData = pluginData; }

    void loadValues(); ///< map to widgets; nothing without a map
    bool applyValues(); ///< widgets to map, when they differ; always true

signals:
    /// Settings of the screen have been written; the list is always empty.
    void screenValuesUpdated(int screenId, QList<int> seqIndexList);

private:
    struct Field
    {
        int ScreenSettings::*member;
        QSpinBox *spinBox;
    };

    QList<Field> fields() const;
    void showSettings(const ScreenSettings &settings);
    ScreenSettings enteredSettings() const;
    QBoxLayout *createIntervalRow();
    QWidget *createConfidenceGroup();
    QBoxLayout *createConcurrentRow();
    QGridLayout *createRestrictionGrid();
    QBoxLayout *createMonitoringBox();

    QVariant *m_pluginData = nullptr;
    // All children of this.
    QSpinBox *m_ageConfidence = nullptr;
    QSpinBox *m_faceDetectionConfidence = nullptr;
    QSpinBox *m_faceDirectionConfidence = nullptr;
    QSpinBox *m_genderConfidence = nullptr;
    QSpinBox *m_interval = nullptr;
    QSpinBox *m_concurrent = nullptr;
    QSpinBox *m_eventRestriction = nullptr;
    QCheckBox *m_visibleMonitoring = nullptr;
};

} // namespace PluginKrHvcP2
