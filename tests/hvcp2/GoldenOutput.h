#pragma once

#include "tests/support/Files.h"
#include "tools/hvcp2/Program.h"

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QTextStream>

namespace KrTest {

/// What a command prints, and behind it what a user does not see on the screen.
inline QString outputOf(const QStringList &arguments)
{
    QString output;
    QString error;
    QTextStream out(&output);
    QTextStream errors(&error);
    Hvcp2::Console console{out, errors, Hvcp2::Paint()};
    const Hvcp2::ExitStatus status = Hvcp2::runProgram(arguments, QStringLiteral("1.2.3"), console);
    out.flush();
    errors.flush();
    return output + error + QStringLiteral("[status %1]\n").arg(status);
}

/// Fails the test when the file says otherwise; with KRHVC_RENEW_GOLDEN it is written instead.
inline void compareWithGolden(const QString &actual, const QString &fileName)
{
    if (actual != readText(fileName) && qEnvironmentVariableIsSet("KRHVC_RENEW_GOLDEN")) {
        QVERIFY(writeFile(fileName, actual.toUtf8()));
        QSKIP("The expected output was renewed.");
    }
    QVERIFY2(QFileInfo::exists(fileName), qPrintable(fileName));
    QCOMPARE(actual.split(QLatin1Char('\n')), readText(fileName).split(QLatin1Char('\n')));
}

} // namespace KrTest
