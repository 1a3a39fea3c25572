-- SPDX-License-Identifier: GPL-3.0-or-later
-- Ardour: a new session at arg[1] with a MIDI track that plays our module; its controls are moved, then it is saved.
AudioEngine:set_backend("None (Dummy)", "Unit-Test", "")
assert(create_session(arg[1], "song", 44100), "no session")
local info = ARDOUR.LuaAPI.new_plugin_info("Zarno Sampler Player", ARDOUR.PluginType.LXVST)
assert(not info:isnil(), "Ardour does not know the module")
local midi, audio = ARDOUR.DataType("midi"), ARDOUR.DataType("audio")
local tracks = Session:new_midi_track(ARDOUR.ChanCount(midi, 1), ARDOUR.ChanCount(audio, 2), true, info, nil, nil, 1,
    "Sampler", ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true)
local sampler
for track in tracks:iter() do sampler = track end
assert(not sampler:nth_plugin(0):isnil(), "the module did not open")
ARDOUR.LuaAPI.usleep(500000)
-- Pan all the way to the left, a little down in volume: settings of the instrument.
for number, value in pairs({ [10] = 0, [7] = 120 }) do
    local event = C.ByteVector()
    event:add({ 0xB0, number, value })
    local track = sampler:to_track():to_midi_track()
    assert(track:write_immediate_event(Evoral.EventType.MIDI_EVENT, 3, event:to_array()), "no event")
end
ARDOUR.LuaAPI.usleep(1000000)
Session:save_state("", false, false, false)
close_session()
print("made")
