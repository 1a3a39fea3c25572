// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/Chance.h"
#include "tests/support/TestInstrument.h"

namespace zarno {

// Every field that makes a difference at random, within what a careful author would write, and a little
// beyond: loops of one frame, zones that end behind their sample, times of 0.
// Few groups, no switching and long notes when `sustained`; everything when not.
void fillAtRandom(TestInstrument& instrument, Chance& chance, bool sustained);

void randomiseTrigger(GroupRecord& record, Chance& chance);
void randomiseEnvelope(GroupRecord& record, Chance& chance);
void randomiseSettings(InstrumentSettings& settings, Chance& chance, bool sustained);

} // namespace zarno
