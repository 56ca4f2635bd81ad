// The pause between characters after a calibration on this machine, for both
// board families, against what the calibration promises: 8.5 passes a unit,
// 6,600,000 (or 66,000,000) units over a loop of 1601 x 30000 passes.
#include "app/AppContext.h"
#include "app/Calibration.h"
#include "app/ScriptedPrompts.h"
#include "link/Link.h"
#include "link/MemoryTransport.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cmath>
#include <cstdio>

using namespace kvr;

namespace {

double PausePerCharacterMs(AppContext &context, const QString &type, int characters)
{
    context.settings.computerType = type;
    MemoryTransport board;
    Link link(context);
    link.SetTransport(&board);
    QElapsedTimer elapsed;
    elapsed.start();
    link.SendText(QString(characters, QLatin1Char('X')), false);
    // SendText paces before each character and once after the last.
    return elapsed.nsecsElapsed() / 1e6 / (characters + 1);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    SystemClock clock;
    AppContext context(Paths(dir.path()), prompts, clock);
    CalibrateDelay(context.settings, clock);

    const double loopPasses = 1601.0 * 30000.0;
    struct Family {
        const char *name;
        const char *type;
        double dividend;
        int characters;
    };
    for (const Family &family : {Family{"KVR4410", "4410ANS", 6600000.0, 600},
                                 Family{"KVR6630", "6630Fig", 66000000.0, 80}}) {
        const double target = family.dividend * 8.5 / loopPasses;
        const double measured = PausePerCharacterMs(context, QString::fromLatin1(family.type), family.characters);
        const double off = (measured - target) / target * 100.0;
        std::printf("delay %s: calibrated %s units, pause %.3f ms a character (target %.2f ms, %+.0f %%, goal within 20 %%) %s\n",
                    family.name,
                    qPrintable(family.type[0] == '6' ? context.settings.delay6630 : context.settings.delay4410),
                    measured, target, off, std::fabs(off) <= 20.0 ? "ok" : "MISSED");
    }
    return 0;
}
