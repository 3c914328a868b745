#define BOOST_LOG_DYN_LINK 1
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/trivial.hpp>

#include "Workload.h"

static const Contender sOffByLevel(kOffByLevel, "Boost.Log", [](benchmark::State& aState) {
  boost::log::core::get()->set_filter(boost::log::trivial::severity >= boost::log::trivial::error);
  Repeat(aState, [](const Tuner& aTuner) {
    STATEMENT_TEN_TIMES(BOOST_LOG_TRIVIAL(info)
                        << "Tuner " << aTuner.mNumber << " locked to " << aTuner.mFrequency << " kHz after "
                        << aTuner.mDelay << " ms");
  });
});
