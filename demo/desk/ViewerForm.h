#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QPushButton;
class QSpinBox;

namespace Desk {

class ViewerDesk;

/// Shows the selected one of those who are placed by hand and changes him. Disabled when nobody is
/// selected.
class ViewerForm : public QWidget
{
    Q_OBJECT

public:
    /// @p desk has to outlive this.
    explicit ViewerForm(ViewerDesk *desk, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QSpinBox *addAngle(QFormLayout *layout, const QString &label, const QString &name);
    void connectFields();
    void showViewer(); // fields from the desk
    void takeFields(); // and back

    ViewerDesk *m_desk;
    // Children of this
    QSpinBox *m_age;
    QComboBox *m_gender;
    QSpinBox *m_lr;
    QSpinBox *m_ud;
    QSpinBox *m_roll;
    QCheckBox *m_settled;
    QComboBox *m_noise;
    QPushButton *m_remove;
};

} // namespace Desk
