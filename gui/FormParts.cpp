#include "gui/FormParts.h"

#include <QLabel>
#include <QSpacerItem>
#include <QSpinBox>

namespace PluginKrHvcP2 {

namespace {

/// Layouts reckon with a wrapped text's height only while they have room to spare; this one insists
/// on it, so that nothing around it is squeezed.
class WrappedLabel : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QLabel::resizeEvent(event);
        setMinimumHeight(heightForWidth(width()));
    }
};

} // namespace

QSpinBox *createSpinBox(const QString &name, const IntegerRange &range)
{
    auto *spinBox = new QSpinBox;
    spinBox->setObjectName(name);
    spinBox->setRange(range.minimum, range.maximum);
    spinBox->setAlignment(Qt::AlignRight);
    return spinBox;
}

QLabel *createBuddyLabel(const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

QLabel *createNote(const QString &text, const QString &styleSheet)
{
    auto *note = new QLabel(text);
    note->setStyleSheet(styleSheet);
    return note;
}

QLabel *createWrappedNote(const QString &text, const QString &styleSheet)
{
    auto *note = new WrappedLabel(text);
    note->setWordWrap(true);
    QFont smaller = note->font();
    if (smaller.pointSize() > 1) // -1 for fonts set in pixels
        smaller.setPointSize(smaller.pointSize() - 1);
    note->setFont(smaller);
    note->setStyleSheet(styleSheet);
    return note;
}

QSpacerItem *createRowSpacer(int width, int height)
{
    return new QSpacerItem(width, height, QSizePolicy::Expanding, QSizePolicy::Minimum);
}

QSpacerItem *createFixedSpacer(int size)
{
    return new QSpacerItem(size, size, QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSpacerItem *createBottomSpacer()
{
    return new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding);
}

} // namespace PluginKrHvcP2
