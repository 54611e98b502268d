#include "ShaderBinaryFormatSelector.h"

namespace widgets {

ShaderBinaryFormatSelector::ShaderBinaryFormatSelector(QWidget* parent, const QString& current)
    : NamedValueSelector(parent, glDecimals(candidateNames()), current)
{
}

QList<const char*> ShaderBinaryFormatSelector::candidateNames()
{
    return {"GL_TSR_BINARY_BWD", "GL_TSR_PROGRAM_BINARY_BWD"};
}

} // namespace widgets
