-- Run by Ardour's own Lua: makes a session with three tracks and a master in the folder that is named.
local folder = arg[1]
AudioEngine:set_backend("None (Dummy)", "", "")
local session = create_session(folder, "session", 48000)
for number = 1, 3 do
    session:new_audio_track(1, 2, nil, 1, "Track " .. number, -1, ARDOUR.TrackMode.Normal, true)
end
session:save_state("")
close_session()
quit()
