// SPDX-License-Identifier: GPL-3.0-or-later
// The one symbol a host looks for. It hands over to the framework's wrapper, whose own entry goes by another name.
#include "shell/CZSP.h"

#undef VSTPluginMain
#undef dllexport

namespace Vst2 {
#include "pluginterfaces/vst2.x/aeffect.h"
}

#ifdef _WIN32
#define ZARNO_EXPORT extern "C" __declspec(dllexport)
#else
#define ZARNO_EXPORT extern "C" __attribute__((visibility("default")))
#endif

extern "C" Vst2::AEffect* zarnoWrapperMain(Vst2::audioMasterCallback host);

ZARNO_EXPORT Vst2::AEffect* VSTPluginMain(Vst2::audioMasterCallback host) { return zarnoWrapperMain(host); }
