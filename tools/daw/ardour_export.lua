-- SPDX-License-Identifier: GPL-3.0-or-later
-- Ardour: opens the session at arg[1] again and exports its first arg[2] seconds, without any processing when arg[3]
-- names an export preset. arg[4]: the audio system, "None (Dummy)" when left out.
local backend = arg[4] or "None (Dummy)"
AudioEngine:set_backend(backend, backend == "JACK" and "" or "Unit-Test", "")
assert(load_session(arg[1], "song"), "no session")
ARDOUR.LuaAPI.usleep(500000)
local export = Session:simple_export()
export:set_name("song")
export:set_range(0, arg[2] * 44100)
if arg[3] then assert(export:set_preset(arg[3]), "no such preset") end
assert(export:run_export(), "not exported")
close_session()
print("exported")
