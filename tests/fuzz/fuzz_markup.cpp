// The sensor program's text as the plug-in shows and logs it, whatever the bytes are: nothing may
// crash or take long.

#include "tests/fuzz/Target.h"

#include "detection/LayoutBound.h"
#include "detection/SensorOutputParser.h"
#include "monitor/KrTextItem_Private.h"
#include "monitor/OfflineTextDocument.h"

#include <QDateTime>

using namespace PluginKrHvcP2;

namespace {

constexpr qreal PanelWidth = 512;

void layOut(QGraphicsTextItem *item)
{
    item->document()->idealWidth();
    item->document()->size();
}

void showMarkup(const QString &html)
{
    Private::KrTextItem_Private item;
    item.setTextWidth(PanelWidth);
    item.setHtml(html);
    layOut(&item);

    OfflineTextDocument report;
    report.setHtml(html);
    report.toPlainText();
}

void showText(const QString &text)
{
    Private::KrTextItem_Private item;
    item.setTextWidth(PanelWidth);
    item.setPlainText(text);
    layOut(&item);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString chunk
        = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const SensorFrame frame = SensorOutputParser::parse(chunk, QDateTime());
    if (isLayoutBounded(frame))
        showMarkup(frame.html);
    else
        showText(boundedPlainText(SensorOutputParser::plainText(chunk)));
    return 0;
}
