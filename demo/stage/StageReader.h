#pragma once

#include "demo/support/JsonProblem.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>

/// The JSON form of a stage, which README.md describes. Only the structure is checked; ages,
/// genders and settings are for the plug-in to judge.
namespace Stage::StageReader {

// Of a content, in seconds
constexpr double DefaultDuration = 10;
constexpr double MaxDuration = 86400;

/// Sets @p stage to the whole object, which is a stage unless the returned problem is set.
Demo::JsonProblem read(const QByteArray &json, QJsonObject *stage);

/// What is wrong with @p content as entry @p index of a screen's contents.
Demo::JsonProblem checkContent(const QJsonValue &content, int index);

} // namespace Stage::StageReader
