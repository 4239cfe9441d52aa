#pragma once
// Everything that a program on top of the library needs: measurements and settings in, a correction out, and the
// displays, colours and tables that it consists of.

#include "colour/chromaticity.hpp"
#include "colour/color_metrics.hpp"
#include "colour/gray_factors.hpp"
#include "colour/standards.hpp"
#include "job/correction.hpp"
#include "job/settings.hpp"
#include "job/tone_samples.hpp"
#include "job/warning.hpp"
#include "monitor/measurements.hpp"
#include "monitor/monitor.hpp"
#include "monitor/synthetic_monitor.hpp"
#include "utils/failure.hpp"
#include "utils/lut.hpp"
#include "utils/version.hpp"
