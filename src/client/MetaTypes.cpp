#include "MetaTypes.h"

void registerClientMetaTypes()
{
    qRegisterMetaType<ui::messages::Message>("ui::messages::Message");
    qRegisterMetaType<PID_TYPE>("PID_TYPE");
}
