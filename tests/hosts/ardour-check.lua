-- SPDX-License-Identifier: GPL-3.0-or-later
-- For ardour7-lua: opens what ardour-make.lua saved, compares what the host shows with SET and LATENCY, bounces the
-- track through the plug-in. Environment: SESSION, FRAMES, LATENCY; SET as wanted.
AudioEngine:set_backend ("None (Dummy)", "", "")
local session = assert (load_session (os.getenv ("SESSION"), "try"))
local route = session:route_by_name ("Loop")
local processor = route:nth_plugin (0)
local insert = processor:to_insert ()
ARDOUR.LuaAPI.usleep (700000)

for index, value in (os.getenv ("SET") or ""):gmatch ("(%d+)=([%d.]+)") do
    local shown = ARDOUR.LuaAPI.get_processor_param (processor, tonumber (index))
    local same = math.abs (shown - tonumber (value)) < 1e-6
    print (same and "back" or "LOST", insert:plugin (0):parameter_label (tonumber (index)), shown)
    assert (same)
end

print ("latency", insert:signal_latency ())
assert (insert:signal_latency () == tonumber (os.getenv ("LATENCY")))

local track = route:to_track ()
local region = track:bounce_range (0, tonumber (os.getenv ("FRAMES")), ARDOUR.InterThreadInfo (), track:main_outs (),
                                   false, "bounced")
assert (region and not region:isnil ())
close_session ()
quit ()
