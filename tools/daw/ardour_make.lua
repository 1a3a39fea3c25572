-- SPDX-License-Identifier: GPL-3.0-or-later
-- Ardour: a new session at arg[1] with arg[2] MIDI tracks that each play our module, or the instrument plug-in of
-- Ardour's name arg[3]. Without a number: one,
-- whose controls are moved. Then the session is saved.
AudioEngine:set_backend("None (Dummy)", "Unit-Test", "")
assert(create_session(arg[1], "song", 44100), "no session")
local kind = (arg[3] or "") ~= "" and ARDOUR.PluginType.LV2 or ARDOUR.PluginType.LXVST
local info = ARDOUR.LuaAPI.new_plugin_info(kind == ARDOUR.PluginType.LV2 and arg[3] or "Zarno Sampler Player", kind)
assert(not info:isnil(), "Ardour does not know the module")
local midi, audio = ARDOUR.DataType("midi"), ARDOUR.DataType("audio")
local count = tonumber(arg[2] or "1")
local tracks = Session:new_midi_track(ARDOUR.ChanCount(midi, 1), ARDOUR.ChanCount(audio, 2), true, info, nil, nil,
    count, "Sampler", ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true)
for track in tracks:iter() do
    assert(not track:nth_plugin(0):isnil(), "the module did not open")
end
ARDOUR.LuaAPI.usleep(500000)
if not arg[2] then
    -- Pan all the way to the left, a little down in volume: settings of the instrument.
    for number, value in pairs({ [10] = 0, [7] = 120 }) do
        local event = C.ByteVector()
        event:add({ 0xB0, number, value })
        local track = tracks:front():to_track():to_midi_track()
        assert(track:write_immediate_event(Evoral.EventType.MIDI_EVENT, 3, event:to_array()), "no event")
    end
    ARDOUR.LuaAPI.usleep(1000000)
end
Session:save_state("", false, false, false)
close_session()
print("made")
