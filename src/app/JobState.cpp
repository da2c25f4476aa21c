#include "JobState.h"

JobState &JobState::instance()
{
    static JobState state;
    return state;
}
