#include "demo/desk/PlacingText.h"

#include "demo/desk/ViewerDesk.h"

#include <QCoreApplication>
#include <QStringList>

namespace Desk {

namespace {

using Simulation::Gender;

QString tr(const char *text)
{
    return QCoreApplication::translate("Desk::PlacingText", text);
}

QString genderText(Gender gender)
{
    switch (gender) {
    case Gender::Female:
        return tr("female");
    case Gender::Male:
        return tr("male");
    case Gender::Unknown:
        break;
    }
    return tr("gender not told");
}

} // namespace

QString placingHint(const ViewerDesk &desk)
{
    if (desk.isFull())
        return tr("The sensor reports no more than %1 faces.").arg(ViewerDesk::MaxViewers);
    switch (desk.viewers().size()) {
    case 0:
        return tr("Click to place somebody.");
    case 1:
        return tr("Drag to move, turn the wheel for nearer and farther.");
    default:
        return {};
    }
}

QString spokenText(const ViewerDesk &desk)
{
    QString count = tr("Viewers: %1").arg(desk.viewers().size());
    const PlacedViewer viewer = desk.viewer(desk.selected());
    if (!viewer.isValid())
        return count;
    QStringList parts{genderText(viewer.gender)};
    parts << (viewer.age ? tr("age %1").arg(*viewer.age) : tr("age not told"));
    parts << tr("at %1, %2").arg(viewer.position.x).arg(viewer.position.y);
    parts << tr("size %1").arg(viewer.position.size);
    return tr("%1; selected: %2").arg(count, parts.join(QLatin1String(", ")));
}

} // namespace Desk
