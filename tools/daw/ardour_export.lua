-- SPDX-License-Identifier: GPL-3.0-or-later
-- Ardour: opens the session at arg[1] again and exports its first five seconds.
AudioEngine:set_backend("None (Dummy)", "Unit-Test", "")
assert(load_session(arg[1], "song"), "no session")
ARDOUR.LuaAPI.usleep(500000)
local export = Session:simple_export()
export:set_name("song")
export:set_range(0, 5 * 44100)
assert(export:run_export(), "not exported")
close_session()
print("exported")
