#include "app/DeferToRunningInstance.h"

std::optional<int> DeferToRunningInstance(SessionService &session, QTextStream &out)
{
    if (session.claim() == SessionService::Claim::Claimed)
        return std::nullopt;
    if (session.askHolderToShowPreferences())
        out << "Horalo is already running; its Preferences window is open.\n";
    else
        out << "Horalo is already running in this session.\n";
    out.flush();
    return 0;
}
