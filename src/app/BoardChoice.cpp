#include "app/BoardChoice.h"
#include "app/Text.h"

namespace kvr {

int PortNumber(const QString &commPort)
{
    const int n = static_cast<int>(Val(commPort.mid(3)));
    return (n >= 0 && n <= 20) ? n : 0;
}

BoardChoice CurrentBoardChoice(const Settings &settings)
{
    return {settings.computerType, PortNumber(settings.commPort), settings.remoteIp, settings.remotePort};
}

bool ApplyBoardChoice(Settings &settings, const BoardChoice &choice)
{
    if (ComputerTypes.contains(choice.computerType))
        settings.computerType = choice.computerType;
    bool remoteChanged = false;
    if (choice.port == 0) {
        remoteChanged = settings.remoteIp != choice.remoteIp || settings.remotePort != choice.remotePort;
        settings.remoteIp = choice.remoteIp.left(15);
        settings.remotePort = choice.remotePort.left(5);
    }
    const bool portChanged = PortNumber(settings.commPort) != choice.port
                             || (settings.commPort.left(3) != QLatin1String("COM"));
    return portChanged || (choice.port == 0 && remoteChanged);
}

} // namespace kvr
