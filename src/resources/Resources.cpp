#include "Resources.h"

#include <QtCore/qglobal.h>

void registerResources()
{
    Q_INIT_RESOURCE(CorvaleResources);
}
