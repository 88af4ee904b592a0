#include "tools/hvcp2/Program.h"
#include "tools/hvcp2/RecordCommand.h"
#include "tools/hvcp2/Terminal.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream error(stderr);
    out.setCodec("UTF-8");
    error.setCodec("UTF-8");
    if (Hvcp2::standsForSensorProgram(QCoreApplication::arguments())) {
        Hvcp2::Console console{out, error, Hvcp2::Paint()};
        return Hvcp2::standForSensorProgram(QCoreApplication::arguments(), console);
    }
    Hvcp2::Console console{
        out, error, Hvcp2::Paint(Hvcp2::prepareStandardOutput()), Hvcp2::isStandardErrorTerminal()};
    const Hvcp2::ExitStatus status = Hvcp2::runProgram(
        QCoreApplication::arguments().mid(1), QStringLiteral(KRHVC_VERSION), console);
    out.flush();
    if (out.status() == QTextStream::Ok)
        return status;
    error << "hvcp2: standard output cannot be written\n";
    return Hvcp2::BadUse;
}
