#include "BareCalls.h"
#include "Frames.h"
#include "Goals.h"
#include "Report.h"

#include "detection/SensorOutputParser.h"
#include "monitor/KrMovingTextItem.h"
#include "monitor/SlidePath.h"

#include <QCoreApplication>
#include <QGraphicsTextItem>
#include <QTextDocument>

namespace Bench {

using namespace PluginKrHvcP2;

namespace {

double bar(int faces)
{
    return faces == 0 ? 1.00 : 0.60;
}

void measureFrame(Report &report, int faces)
{
    const QString html = SensorOutputParser::parse(chunk(faces), QDateTime::currentDateTime()).html;
    std::unique_ptr<KrMovingTextItem> panel;
    const auto renewPanel = [&] { // its messages go with it
        panel = std::make_unique<KrMovingTextItem>();
        QCoreApplication::processEvents();
    };
    renewPanel();
    const auto show = [&] {
        panel->addHtml(html, Upwards);
        panel->moveTextItem();
    };

    std::unique_ptr<QGraphicsTextItem> item;
    const qreal width = panel->rect().width();
    const auto showBare = [&] {
        item = bareItem();
        item->setHtml(html);
        item->setTextWidth(width);
        item->document()->size();
    };

    const Comparison worst
        = compare({{show}, renewPanel}, {{showBare}, [&] { item.reset(); }}).front();
    report.addRatio(QStringLiteral("P2"), facesText(faces), worst, bar(faces));
}

} // namespace

void measurePanel(Report &report)
{
    for (const int faces : FaceCounts)
        measureFrame(report, faces);
}

} // namespace Bench
