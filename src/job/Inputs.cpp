#include "Inputs.h"

namespace tovo::job {

double* JobValueNamed(JobValues& values, const ObjectName& object)
{
    if (object.kind != Kind::JobValue)
        return nullptr;
    if (object.name == "DURATION")
        return &values.duration;
    if (object.name == "JOBSIZE")
        return &values.jobSize;
    return object.name == "QUANTITY" ? &values.quantity : nullptr;
}

Refusal NoInput(const ObjectName& object)
{
    return {RefusalKind::UnknownName, "there is no variable or job value of this name to set",
            object.name};
}

} // namespace tovo::job
