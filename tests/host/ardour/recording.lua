-- A second track records what the looper plays. Ardour keeps notes in ticks of 1920 to the quarter.
local studio = dofile(arg[3] .. "/studio.lua")

studio.open()
studio.playPlainly()
studio.choose(0, "march", 36)
local recorder = studio.newTrack("Recorder")
local from = studio.track:output():midi(0)
assert(recorder:input():midi(0):connect(from:name()) == 0)
studio.locate(0)
studio.forgetEvents()
recorder:rec_enable_control():set_value(1, PBD.GroupControlDisposition.NoGroup)
Session:maybe_enable_record(false)
studio.start()
studio.waitForSample(8 * 24000)
studio.stop()
Session:disable_record(true, false)

local region = nil
studio.waitFor("the recording", function()
    for taken in recorder:playlist():region_list():iter() do
        region = taken:to_midiregion()
    end
    return region
end)
studio.equal(region:position():samples(), 0, "the region's start")

local keys, count = { 36, 38, 40, 42 }, 0
for note in ARDOUR.LuaAPI.note_list(region:midi_source(0):model()):iter() do
    local name = "note " .. count
    if count < 8 then -- the next one is cut off by the stop
        studio.equal(note:note(), keys[count % 4 + 1], name)
        studio.check(note:time() == Temporal.Beats(count, 0), name .. " starts off its tick")
        studio.check(note:length() == Temporal.Beats(0, 960), name .. " is not an eighth")
        studio.equal(note:velocity(), 100, name .. "'s velocity")
    end
    count = count + 1
end
studio.check(count >= 8, "only " .. count .. " notes are recorded")
studio.finish()
