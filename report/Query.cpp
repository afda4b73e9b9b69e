#include "report/Query.h"

namespace report {

QueryReport queryReport(const monitor::TrackAnswer& step, const monitor::QueryAnswer& answer)
{
    return {step.step, step.t, answer, step.status, step.complete, step.limit};
}

} // namespace report
