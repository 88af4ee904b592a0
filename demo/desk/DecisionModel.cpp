#include "demo/desk/DecisionModel.h"

#include "detection/SensorOutputParser.h"
#include "tools/analysis/ReportText.h"
#include "tools/analysis/Words.h"

#include <QColor>
#include <QCoreApplication>
#include <QFont>
#include <QIcon>
#include <QPixmap>

#include <algorithm>

namespace Desk {

using namespace Analysis;
using PluginKrHvcP2::ContentReason;

namespace {

constexpr int ChipSize = 12; // device independent pixels
constexpr int MaxFailures = 5;

// Readable on dark and on light ground.
const QColor FaintColor(0x8a, 0x95, 0xa1);
const QColor SentColor(0x45, 0xb0, 0x6e);
const QColor RestrictedColor(0xd9, 0x93, 0x2a);

/// What analysis calls something, in the language of the user.
QString shown(const QString &word)
{
    return QCoreApplication::translate("Analysis::Words", word.toUtf8().constData());
}

/// A tool tip takes what looks like HTML for HTML.
QString plain(const QString &text)
{
    return QLatin1String("<span>") + text.toHtmlEscaped() + QLatin1String("</span>");
}

QIcon chip(const Stage::StageColor &color)
{
    QPixmap pixmap(ChipSize, ChipSize);
    pixmap.fill(QColor(color.red, color.green, color.blue));
    return {pixmap};
}

QFont boldFont()
{
    QFont font; // all else is the view's
    font.setBold(true);
    return font;
}

QString nameOf(const Plan &plan, int number)
{
    return QStringLiteral("%1 %2").arg(sequenceWord(number), plan.name(number)).trimmed();
}

QString rowName(DecisionModel::Row row)
{
    switch (row) {
    case DecisionModel::Sequence:
        return DecisionModel::tr("Sequence");
    case DecisionModel::Outcome:
        return DecisionModel::tr("Outcome");
    case DecisionModel::TimeLeft:
        return DecisionModel::tr("Held for");
    case DecisionModel::Gender:
        return DecisionModel::tr("Gender");
    case DecisionModel::Age:
        return DecisionModel::tr("Age");
    case DecisionModel::Size:
        return DecisionModel::tr("Size");
    case DecisionModel::SizeRank:
        return DecisionModel::tr("Size rank");
    case DecisionModel::Direction:
        return DecisionModel::tr("Direction");
    case DecisionModel::DirectionRank:
        return DecisionModel::tr("Direction rank");
    case DecisionModel::BaseScore:
        return DecisionModel::tr("Base score");
    case DecisionModel::FitBonus:
        return DecisionModel::tr("Bonus");
    case DecisionModel::GenderBonus:
        return DecisionModel::tr("Bonus, gender*");
    case DecisionModel::AgeBonus:
        return DecisionModel::tr("Bonus, age*");
    case DecisionModel::Score:
        return DecisionModel::tr("Score");
    case DecisionModel::Content:
    case DecisionModel::RowKinds:
        break;
    }
    return {};
}

} // namespace

DecisionModel::DecisionModel(QObject *parent)
    : QAbstractTableModel(parent)
{ }

void DecisionModel::setPlan(const Plan &plan)
{
    beginResetModel();
    m_plan = plan;
    m_frame = SeenFrame();
    m_bonuses.clear();
    m_positions.clear();
    int position = 0;
    for (const PlannedContent &entry : plan.entries)
        m_positions.append(entry.takesPart() ? position++ : -1);
    endResetModel();
}

void DecisionModel::setFrame(const SeenFrame &frame)
{
    const int before = columnCount();
    const int after = frame.decision.faces.size();
    // The rest stays where it is scrolled to.
    if (after > before)
        beginInsertColumns(QModelIndex(), before, after - 1);
    else if (after < before)
        beginRemoveColumns(QModelIndex(), after, before - 1);
    m_frame = frame;
    m_elapsedMs = 0;
    m_bonuses.clear();
    for (const DecidedFace &face : frame.decision.faces)
        m_bonuses.append(bonusOf(face, m_plan.contents));
    if (after > before)
        endInsertColumns();
    else if (after < before)
        endRemoveColumns();
    if (after == 0)
        return;
    emit dataChanged(index(0, 0), index(rowCount() - 1, after - 1));
    emit headerDataChanged(Qt::Horizontal, 0, after - 1);
}

void DecisionModel::clear()
{
    setFrame(SeenFrame());
}

void DecisionModel::setElapsed(qint64 ms)
{
    m_elapsedMs = ms;
    const int row = rowOf(TimeLeft);
    if (columnCount() > 0)
        emit dataChanged(index(row, 0), index(row, columnCount() - 1));
}

bool DecisionModel::isRunningDown() const
{
    const QVector<DecidedFace> &faces = m_frame.decision.faces;
    return std::any_of(faces.cbegin(), faces.cend(),
        [this](const DecidedFace &face) { return face.remainingMs > m_elapsedMs; });
}

QString DecisionModel::summary() const
{
    if (m_frame.number == 0)
        return {};
    const Decision &decision = m_frame.decision;
    QStringList lines;
    if (decision.errorSeen) {
        lines << tr("The sensor program reported a failure:");
        lines << failuresIn(PluginKrHvcP2::SensorOutputParser::plainText(m_frame.text))
                     .mid(0, MaxFailures);
    }
    if (decision.faces.isEmpty())
        lines << shown(noFaceWord(decision));
    for (const DecidedFace &face : decision.faces) {
        if (face.evidence != DecidedFace::Times)
            lines << shown(evidenceWord(face));
    }
    lines << shown(sentWord(decision, [this](int number) { return nameOf(m_plan, number); }));
    return lines.join(QLatin1Char('\n'));
}

int DecisionModel::rowOf(Row row) const
{
    return row <= Content ? row : row - 1 + m_plan.entries.size();
}

int DecisionModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : RowKinds - 1 + m_plan.entries.size();
}

int DecisionModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_frame.decision.faces.size();
}

QVariant DecisionModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return text(index.row(), index.column());
    case Qt::ToolTipRole:
        return toolTip(index.row(), index.column());
    case Qt::ForegroundRole:
        return color(index.row(), index.column());
    case Qt::TextAlignmentRole:
        return int(Qt::AlignCenter);
    case Qt::FontRole:
        return isEmphasized(index.row(), index.column()) ? QVariant(boldFont()) : QVariant();
    default:
        return {};
    }
}

QVariant DecisionModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal) {
        return section < columnCount() ? faceHeader(m_frame.decision.faces.at(section), role)
                                       : QVariant();
    }
    if (section >= rowCount())
        return {};
    const Row row = kindOf(section);
    if (row == Content)
        return entryHeader(entryOf(section), role);
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    return role == Qt::DisplayRole ? QVariant(rowName(row)) : QVariant();
}

DecisionModel::Row DecisionModel::kindOf(int row) const
{
    if (row < Content)
        return Row(row);
    return row < rowOf(FitBonus) ? Content : Row(row + 1 - m_plan.entries.size());
}

QString DecisionModel::text(int row, int column) const
{
    const DecidedFace &face = m_frame.decision.faces.at(column);
    const Bonus &bonus = m_bonuses.at(column);
    switch (kindOf(row)) {
    case Sequence:
        return face.sequence > 0 ? sequenceWord(face.sequence) : tr("none");
    case Outcome:
        return face.sequence > 0 ? shown(outcomeWord(face.outcome)) : QString();
    case TimeLeft:
        return timeLeft(face);
    case Gender:
        return shown(genderWord(face.evaluation));
    case Age:
        return shown(ageWord(face.evaluation));
    case Size:
        return QString::number(face.face.size());
    case SizeRank:
        return QString::number(face.sizeRank);
    case Direction:
        return shown(directionWord(face.face));
    case DirectionRank:
        return QString::number(face.directionRank);
    case BaseScore:
        return scoreWord(face.prominence);
    case Content: {
        const ContentReason *const reason = reasonOf(row, column);
        return reason ? shown(QString::fromLatin1(wordsOf(*reason).word)) : tr("-");
    }
    case FitBonus:
        return bonusWord(bonus.plain);
    case GenderBonus:
        return bonusWord(bonus.genderMark);
    case AgeBonus:
        return bonusWord(bonus.ageMark);
    case Score:
        return scoreWord(face.score());
    case RowKinds:
        break;
    }
    return {};
}

QString DecisionModel::toolTip(int row, int column) const
{
    const DecidedFace &face = m_frame.decision.faces.at(column);
    switch (kindOf(row)) {
    case Gender:
    case Age:
        return face.evaluation.genderMarked || face.evaluation.ageMarked
            ? tr("*: the sensor has settled on it")
            : QString();
    case SizeRank:
    case DirectionRank:
        return tr("the higher, the larger, or the straighter: half of that counts");
    case Content: {
        const ContentReason *const reason = reasonOf(row, column);
        return shown(reason ? QString::fromLatin1(wordsOf(*reason).meaning)
                            : reasonWord(entryOf(row).reason));
    }
    case Sequence:
        return face.sequence > 0 ? plain(nameOf(m_plan, face.sequence)) : QString();
    default:
        return {};
    }
}

QVariant DecisionModel::color(int row, int column) const
{
    const DecidedFace &face = m_frame.decision.faces.at(column);
    switch (kindOf(row)) {
    case Content: {
        const ContentReason *const reason = reasonOf(row, column);
        return reason && isTaken(*reason) ? QVariant() : FaintColor;
    }
    case Sequence:
    case Outcome:
    case TimeLeft:
        if (face.outcome == DecidedFace::Sent)
            return SentColor;
        return face.outcome == DecidedFace::Restricted ? RestrictedColor : FaintColor;
    default:
        return {};
    }
}

bool DecisionModel::isEmphasized(int row, int column) const
{
    switch (kindOf(row)) {
    case Content: {
        const ContentReason *const reason = reasonOf(row, column);
        return reason && isTaken(*reason);
    }
    case Sequence:
    case Outcome:
        return m_frame.decision.faces.at(column).outcome == DecidedFace::Sent;
    default:
        return false;
    }
}

QString DecisionModel::timeLeft(const DecidedFace &face) const
{
    if (face.remainingMs <= 0)
        return {};
    const qint64 left = face.remainingMs - m_elapsedMs;
    return left > 0 ? durationWord(left) : tr("over");
}

QVariant DecisionModel::faceHeader(const DecidedFace &face, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return tr("Face %1").arg(face.face.index);
    case Qt::ForegroundRole:
        return face.outcome == DecidedFace::NothingFits ? QVariant(FaintColor) : QVariant();
    default:
        return {};
    }
}

QVariant DecisionModel::entryHeader(const PlannedContent &entry, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return nameOf(m_plan, entry.number);
    case Qt::ToolTipRole:
        return plain(entry.takesPart()
                ? nameOf(m_plan, entry.number)
                : tr("%1 is not in the table: %2")
                      .arg(nameOf(m_plan, entry.number), shown(reasonWord(entry.reason))));
    case Qt::DecorationRole:
        return chip(entry.color);
    case Qt::ForegroundRole:
        return entry.takesPart() ? QVariant() : QVariant(FaintColor);
    case Qt::TextAlignmentRole:
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    default:
        return {};
    }
}

const PlannedContent &DecisionModel::entryOf(int row) const
{
    return m_plan.entries.at(row - Content);
}

const ContentReason *DecisionModel::reasonOf(int row, int column) const
{
    const int position = m_positions.at(row - Content);
    const QVector<ContentReason> &reasons = m_frame.decision.faces.at(column).evaluation.reasons;
    return position >= 0 && position < reasons.size() ? &reasons.at(position) : nullptr;
}

} // namespace Desk
