#pragma once
// Everything that a program on top of the library needs: measurements and settings in, a correction out, and the
// displays, colours and tables that it consists of.

#include "corvantile/colour/chromaticity.hpp"
#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/colour/gray_factors.hpp"
#include "corvantile/colour/standards.hpp"
#include "corvantile/documents/measurement_file.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/job/device_tables.hpp"
#include "corvantile/job/finding.hpp"
#include "corvantile/job/settings.hpp"
#include "corvantile/job/tone_samples.hpp"
#include "corvantile/monitor/measurements.hpp"
#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/synthetic_monitor.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/lut.hpp"
#include "corvantile/utils/version.hpp"
