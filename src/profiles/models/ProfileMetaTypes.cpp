#include "ProfileMetaTypes.h"

void registerProfileMetaTypes()
{
    qRegisterMetaType<std::weak_ptr<const ProfileDataWrapper>>("std::weak_ptr<const ProfileDataWrapper>");
}
