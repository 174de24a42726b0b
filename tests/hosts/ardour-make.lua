-- SPDX-License-Identifier: GPL-3.0-or-later
-- For ardour7-lua: a session "try" of one stereo track with the plug-in, saved. Environment: SESSION, FORMAT (VST3 or
-- LV2), FRAMES, VST3_ID; SET="index=value ..." (normalised; VST3 only) and PROGRAM (a name) as wanted.
local function need (name)
    local value = assert (os.getenv (name), name .. " is not set")
    return value
end

local lv2 = need ("FORMAT") == "LV2"
AudioEngine:set_backend ("None (Dummy)", "", "")
local session = assert (create_session (need ("SESSION"), "try", 48000))
session:new_audio_track (2, 2, nil, 1, "Loop", ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true)
local route = session:route_by_name ("Loop")

-- Scripts cannot import files. A bounce of the empty track makes a region and its files, for the caller to fill.
local track = route:to_track ()
local silence = track:bounce_range (0, tonumber (need ("FRAMES")), ARDOUR.InterThreadInfo (), track:main_outs (), false,
                                    "loop")
track:playlist ():add_region (silence, Temporal.timepos_t (0), 1, false, 0, 0, false)

local plugin = lv2
    and ARDOUR.LuaAPI.new_plugin (session, "http://corvane.example/plugins/corvane-q7", ARDOUR.PluginType.LV2, "")
    or ARDOUR.LuaAPI.new_plugin (session, need ("VST3_ID"), ARDOUR.PluginType.VST3, "")
assert (not plugin:isnil (), "the host does not know the plug-in")
route:add_processor_by_index (plugin, 0, nil, true)

local processor = route:nth_plugin (0)
local instance = processor:to_insert ():plugin (0)
print ("made", instance:name (), instance:parameter_count () .. " parameters and ports")

for index, value in (os.getenv ("SET") or ""):gmatch ("(%d+)=([%d.]+)") do
    assert (ARDOUR.LuaAPI.set_processor_param (processor, tonumber (index), tonumber (value)))
end

local program = os.getenv ("PROGRAM")
if program then
    ARDOUR.LuaAPI.usleep (700000) -- for half a second behind a restored state the plug-in refuses programs
    assert (instance:load_preset (instance:preset_by_label (program)), "no such program")
end

ARDOUR.LuaAPI.usleep (500000)
session:save_state ("")
close_session ()
quit ()
