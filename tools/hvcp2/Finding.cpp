#include "tools/hvcp2/Finding.h"

#include "tools/hvcp2/ConsoleText.h"

#include <QJsonArray>

#include <algorithm>

namespace Hvcp2 {

namespace {

constexpr int Indent = 9; // columns for the level

int count(const Findings &findings, Finding::Level level)
{
    return static_cast<int>(std::count_if(findings.cbegin(), findings.cend(),
        [level](const Finding &finding) { return finding.level == level; }));
}

QString levelWord(Finding::Level level)
{
    switch (level) {
    case Finding::Ok:
        return QStringLiteral("OK");
    case Finding::Warning:
        return QStringLiteral("warning");
    case Finding::Error:
        return QStringLiteral("error");
    }
    return {};
}

QString findingText(const Finding &finding, const Paint &paint)
{
    const QString word = levelWord(finding.level);
    const QString text
        = wrapped(printable(finding.subject + QLatin1String(": ") + finding.text), Indent);
    const QString advice
        = finding.advice.isEmpty() ? QString() : wrapped(printable(finding.advice), Indent);
    return (finding.level == Finding::Ok ? paint.good(word) : paint.warning(word))
        + text.mid(word.size()) + advice;
}

QString countWord(int number, const QString &word)
{
    return QStringLiteral("%1 %2%3").arg(
        QString::number(number), word, QLatin1String(number == 1 ? "" : "s"));
}

} // namespace

bool isFine(const Findings &findings)
{
    return count(findings, Finding::Ok) == findings.size();
}

QString findingsText(const Findings &findings, const Paint &paint)
{
    QString text;
    for (const Finding &finding : findings)
        text += findingText(finding, paint);
    if (isFine(findings))
        return text + QLatin1Char('\n') + paint.good(QStringLiteral("All is fine."))
            + QLatin1Char('\n');
    return text
        + QStringLiteral("\n%1, %2.\n")
              .arg(countWord(count(findings, Finding::Error), levelWord(Finding::Error)),
                  countWord(count(findings, Finding::Warning), levelWord(Finding::Warning)));
}

QJsonObject findingsJson(const Findings &findings)
{
    QJsonArray list;
    for (const Finding &finding : findings) {
        list.append(QJsonObject{
            {QStringLiteral("level"), levelWord(finding.level).toLower()},
            {QStringLiteral("subject"), finding.subject},
            {QStringLiteral("text"), finding.text},
            {QStringLiteral("advice"), finding.advice},
        });
    }
    return {
        {QStringLiteral("errors"), count(findings, Finding::Error)},
        {QStringLiteral("warnings"), count(findings, Finding::Warning)},
        {QStringLiteral("findings"), list},
    };
}

} // namespace Hvcp2
