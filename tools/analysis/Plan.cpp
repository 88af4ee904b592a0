#include "tools/analysis/Plan.h"

#include "core/screen/ContentEntry.h"
#include "demo/stage/StageFile.h"
#include "demo/stage/StageKeys.h"
#include "demo/stage/StageText.h"
#include "demo/support/JsonReader.h"
#include "demo/support/UserFile.h"
#include "host/KrPluginKeys.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace Analysis {

using namespace PluginKrHvcP2;
using Demo::JsonPath;
using Demo::JsonProblem;
using Stage::StageFile;

namespace Keys = Kora::Keys;
namespace StageKeys = Stage::StageKeys;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Analysis::Plan", text);
}

QString inQuotes(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

/// A key is found in any letter case; of several ones the last counts.
QString writtenKey(const QJsonObject &params, const QString &key)
{
    QString written = key;
    const QStringList keys = params.keys();
    for (const QString &candidate : keys) {
        if (candidate.compare(key, Qt::CaseInsensitive) == 0)
            written = candidate;
    }
    return written;
}

QString describeAge(const QJsonValue &value)
{
    if (value.isUndefined())
        return tr("the key is missing");
    bool ok = false;
    const int age = value.toVariant().toInt(&ok);
    if (ok)
        return tr("%1 is below 0").arg(age);
    const QString text = Stage::shortened(value.toVariant().toString(), 40);
    return tr("%1 is no whole number").arg(inQuotes(text));
}

QString describeGender(const QJsonValue &value)
{
    if (value.isUndefined())
        return tr("the key is missing");
    const QString text = Stage::shortened(value.toVariant().toString(), 40);
    return tr(R"(%1 is none of "female", "male" and "both")").arg(inQuotes(text));
}

/// Says of the entries of one screen why they take no part, and where that stands in the file,
/// unless its text is empty: to find a place takes time.
class ProblemFinder
{
public:
    ProblemFinder(const QByteArray &json, const StageFile &stage, int screenId)
        : m_json(json)
        , m_entries(stage.contents(screenId))
        , m_screen(JsonPath().key(StageKeys::Screens).element(stage.screenIds().indexOf(screenId)))
        , m_screenId(screenId)
        , m_places(m_screen.key(Keys::Contents).elementOffsetsIn(json))
        , m_eventsPlace(m_screen.key(StageKeys::Event).offsetIn(json))
    { }

    /// How many contents are valid, linked or not.
    void setValidCount(int count) { m_validCount = count; }

    /// Fastest in the order of the entries.
    JsonProblem find(const PlannedContent &entry)
    {
        JsonProblem problem = describe(entry);
        if (problem.isSet() && !m_json.isEmpty())
            place(problem, placeOf(entry));
        return problem;
    }

private:
    JsonProblem describe(const PlannedContent &entry) const
    {
        const JsonPath path = m_screen.key(Keys::Contents).element(entry.number - 1);
        const QString number = QString::number(entry.number);
        JsonProblem problem;
        switch (entry.reason) {
        case EntryReason::TakesPart:
            break;
        case EntryReason::NoScreenId:
            problem.set(m_screen.key(Keys::Id), tr("the id is no whole number"));
            break;
        case EntryReason::NoLowestAge:
            problem.set(pathOf(entry, Keys::AgeMin), describeAge(valueOf(entry, Keys::AgeMin)));
            break;
        case EntryReason::NoHighestAge:
            problem.set(pathOf(entry, Keys::AgeMax), describeAge(valueOf(entry, Keys::AgeMax)));
            break;
        case EntryReason::NoGender:
            problem.set(pathOf(entry, Keys::Gender), describeGender(valueOf(entry, Keys::Gender)));
            break;
        case EntryReason::AgesReversed:
            problem.set(pathOf(entry, Keys::AgeMin),
                tr("%1 is above the highest age, %2")
                    .arg(QString::number(entry.content.ageMin),
                        QString::number(entry.content.ageMax)));
            break;
        case EntryReason::NoOwnEvent:
            problem.set(m_screen.key(StageKeys::Event),
                tr("no event of direction 1 and of type 2 or above opens sequence %1").arg(number)
                    + hintAtOpenEvents(entry.number));
            break;
        case EntryReason::NoLinkingScreen:
            problem.set(path,
                tr(R"(no other screen has an event with "id" %1 and "screenseq" %2)")
                    .arg(QString::number(m_screenId), number));
            break;
        }
        return problem;
    }

    /// Counts on from the place of the last problem that did not lie behind this one.
    void place(JsonProblem &problem, int offset)
    {
        if (offset < m_lastOffset) {
            problem.placeAt(m_json, offset);
            return;
        }
        const QByteArray between = m_json.mid(m_lastOffset, offset - m_lastOffset);
        problem.placeAt(between, between.size());
        if (problem.line == 1)
            problem.column += m_lastColumn - 1;
        problem.line += m_lastLine - 1;
        m_lastOffset = offset;
        m_lastLine = problem.line;
        m_lastColumn = problem.column;
    }

    /// The offset of the problem's path. A file may have megabytes, and a thousand problems.
    int placeOf(const PlannedContent &entry) const
    {
        switch (entry.reason) {
        case EntryReason::NoLowestAge:
        case EntryReason::AgesReversed:
            return placeOf(entry, Keys::AgeMin);
        case EntryReason::NoHighestAge:
            return placeOf(entry, Keys::AgeMax);
        case EntryReason::NoGender:
            return placeOf(entry, Keys::Gender);
        case EntryReason::NoOwnEvent:
            return m_eventsPlace;
        default:
            return m_places.value(entry.number - 1);
        }
    }

    int placeOf(const PlannedContent &entry, const QString &key) const
    {
        const int begin = m_places.value(entry.number - 1);
        const int end = m_places.value(entry.number, m_json.size());
        const JsonPath path
            = JsonPath().key(StageKeys::Params).key(writtenKey(paramsOf(entry), key));
        return begin + path.offsetIn(m_json.mid(begin, end - begin));
    }

    QString hintAtOpenEvents(int number) const
    {
        return number <= m_validCount
            ? QString()
            : tr("; one without a list opens as many as contents are valid, here 1 to %1")
                  .arg(m_validCount);
    }

    QJsonObject paramsOf(const PlannedContent &entry) const
    {
        return m_entries.at(entry.number - 1).toObject().value(StageKeys::Params).toObject();
    }

    QJsonValue valueOf(const PlannedContent &entry, const QString &key) const
    {
        const QJsonObject params = paramsOf(entry);
        return params.value(writtenKey(params, key));
    }

    JsonPath pathOf(const PlannedContent &entry, const QString &key) const
    {
        return m_screen.key(Keys::Contents)
            .element(entry.number - 1)
            .key(StageKeys::Params)
            .key(writtenKey(paramsOf(entry), key));
    }

    const QByteArray &m_json;
    const QJsonArray m_entries;
    const JsonPath m_screen;
    const int m_screenId;
    const QVector<int> m_places; // of the entries in m_json
    const int m_eventsPlace; // likewise
    int m_validCount = 0;
    int m_lastOffset = 0; // where line and column are known
    int m_lastLine = 1;
    int m_lastColumn = 1;
};

bool isValid(EntryReason reason)
{
    return reason == EntryReason::TakesPart || reason == EntryReason::NoOwnEvent
        || reason == EntryReason::NoLinkingScreen;
}

/// @p json is the text that @p stage was read from; empty when that is not known.
Plan planOfScreen(const StageFile &stage, int screenId, const QByteArray &json)
{
    Plan plan;
    plan.fileName = stage.fileName();
    plan.title = stage.title();
    plan.screenId = screenId;
    plan.screenName = stage.screenName(screenId);
    const QVariantMap parameters = stage.screenParameters(screenId);
    plan.settings.update(parameters.value(Keys::PluginData).toMap());

    const DetectionTable table = detectionTable(parameters, stage.screens());
    plan.contents = table.contents;
    ProblemFinder finder(json, stage, screenId);
    finder.setValidCount(
        static_cast<int>(std::count_if(table.reasons.cbegin(), table.reasons.cend(), isValid)));
    const QJsonArray entries = stage.contents(screenId);
    for (int i = 0; i < entries.size(); ++i) {
        const QJsonObject entry = entries.at(i).toObject();
        PlannedContent planned;
        planned.number = i + 1;
        planned.name = Stage::contentName(entry);
        planned.color = Stage::contentColor(entry, planned.number);
        planned.reason = table.reasons.at(i);
        planned.content = planned.takesPart()
            ? findContent(table.contents, planned.number)
            : contentForDetection(entry.toVariantMap(), planned.number);
        planned.problem = finder.find(planned);
        plan.entries.append(planned);
    }
    return plan;
}

} // namespace

QString Plan::name(int number) const
{
    return number >= 1 && number <= entries.size() ? entries.at(number - 1).name : QString();
}

std::optional<Plan> readPlan(const QString &fileName, std::optional<int> screenId, QString *error)
{
    const std::optional<QByteArray> json
        = Demo::UserFile::read(fileName, Demo::MaxJsonMebibytes, error);
    return json ? planFromJson(*json, fileName, screenId, error) : std::nullopt;
}

std::optional<Plan> planFromJson(
    const QByteArray &json, const QString &fileName, std::optional<int> screenId, QString *error)
{
    const std::optional<StageFile> stage = StageFile::fromJson(json, fileName, error);
    if (!stage)
        return std::nullopt;
    const int id = screenId.value_or(stage->defaultScreenId());
    if (!stage->hasScreen(id)) {
        *error = tr("%1: there is no screen %2").arg(fileName, QString::number(id));
        return std::nullopt;
    }
    return planOfScreen(*stage, id, json);
}

Plan planOf(const StageFile &stage, int screenId)
{
    return planOfScreen(stage, screenId, QByteArray());
}

bool assignSetting(const QString &assignment, ScreenSettings *settings, QString *error)
{
    const int equals = assignment.indexOf(QLatin1Char('='));
    if (equals < 1) {
        *error = tr("\"%1\" is not of the form KEY=VALUE").arg(assignment);
        return false;
    }
    const QString key = assignment.left(equals).trimmed().toLower();
    const QString value = assignment.mid(equals + 1).trimmed();
    const QStringList keys = ScreenSettings().toMap().keys();
    if (!keys.contains(key)) {
        *error = tr("\"%1\" is no setting; there are %2").arg(key, keys.join(QLatin1String(", ")));
        return false;
    }
    // What is not taken over leaves the setting as it was.
    ScreenSettings assigned = *settings;
    assigned.update({{key, value}});
    if (assigned.toMap().value(key) != QVariant(value)) {
        *error = tr("\"%1\" is no value for %2").arg(value, key);
        return false;
    }
    *settings = assigned;
    return true;
}

} // namespace Analysis
