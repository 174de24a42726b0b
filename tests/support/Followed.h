// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/CorvaneQ7AudioProcessor.h"

/** The processor as its next block finds the engine: with all settings followed that were handed over. */
inline CorvaneQ7AudioProcessor& followed (CorvaneQ7AudioProcessor& processor)
{
    processor.followSettings();
    return processor;
}
