#include "BareCalls.h"
#include "Frames.h"
#include "Goals.h"
#include "HostedPlugin.h"
#include "Report.h"

#include "detection/SensorOutputParser.h"

#include <QGraphicsTextItem>
#include <QTextDocument>

namespace Bench {

using namespace PluginKrHvcP2;

namespace {

constexpr int Contents = 20;
constexpr qreal PanelWidth = 512;

double slotBar(int faces)
{
    if (faces == 0)
        return 1.00;
    return faces < 3 ? 0.85 : 0.70;
}

double enteredBar(int faces)
{
    return faces == 0 ? 1.15 : 1.08;
}

void measureFrame(Report &report, int faces, HostedPlugin::Panel panel)
{
    const QString text = chunk(faces);
    HostedPlugin plugin(Contents, panel);
    const Side ours{{[&] { plugin.receive(text); }, [&] { plugin.enterMessages(); }},
        [&] { plugin.dropMessages(); }};

    const QString html = SensorOutputParser::parse(text, QDateTime::currentDateTime()).html;
    const QTemporaryDir directory;
    BareLog log(directory.path());
    QTextDocument document;
    std::unique_ptr<QGraphicsTextItem> message;
    std::unique_ptr<QGraphicsTextItem> notice;
    const auto bareFrame = [&] {
        message = bareMessage(html, PanelWidth);
        log.write(bareReport(document, html), QStringLiteral("Information"));
        log.write(
            QStringLiteral("The determined sequence number: #1"), QStringLiteral("Information"));
    };
    const auto bareNotice = [&] {
        if (faces > 0) // without one nothing is started, and nothing said about it
            notice = bareText(QStringLiteral("A switch to #1 has been sent."), PanelWidth);
    };
    const Side bare{{bareFrame, bareNotice}, [&] {
                        message.reset();
                        notice.reset();
                    }};

    const std::vector<Comparison> worst = compare(ours, bare);
    const QString shown
        = panel == HostedPlugin::ShownPanel ? QStringLiteral("shown") : QStringLiteral("hidden");
    const QString name = QStringLiteral("%1, panel %2").arg(facesText(faces), shown);
    report.addRatio(QStringLiteral("P1"), name, worst.at(0), slotBar(faces));
    report.addRatio(QStringLiteral("P1b"), name, worst.at(1), enteredBar(faces));
}

} // namespace

void measureSlot(Report &report)
{
    for (const int faces : FaceCounts)
        measureFrame(report, faces, HostedPlugin::ShownPanel);
    // What differs between the two does not grow with the faces.
    for (const int faces : {0, 1, 3, 10})
        measureFrame(report, faces, HostedPlugin::HiddenPanel);
}

} // namespace Bench
