#include "bench/cores.h"

#include <opencv2/core/utility.hpp>

#include <cstdio>
#include <cstdlib>

namespace {

void setCores(const cpu_set_t& cores)
{
    if (sched_setaffinity(0, sizeof cores, &cores) != 0) {
        std::perror("sched_setaffinity");
        std::exit(1); // a figure for one core that was not measured on one core would be a lie
    }
}

cpu_set_t cores()
{
    cpu_set_t result;
    CPU_ZERO(&result);
    if (sched_getaffinity(0, sizeof result, &result) != 0) {
        std::perror("sched_getaffinity");
        std::exit(1);
    }
    return result;
}

} // namespace

OneCoreOnly::OneCoreOnly()
    : m_before(cores())
    , m_threadsBefore(cv::getNumThreads())
{
    int first = 0;
    while (!CPU_ISSET(first, &m_before))
        ++first;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    setCores(one);
    cv::setNumThreads(1);
}

OneCoreOnly::~OneCoreOnly()
{
    cv::setNumThreads(m_threadsBefore);
    setCores(m_before);
}

int coresAtHand()
{
    const cpu_set_t all = cores();
    return CPU_COUNT(&all);
}
