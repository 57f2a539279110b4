-- Notes come on the samples that they belong to, wherever and however the transport runs.
local studio = dofile(arg[3] .. "/studio.lua")
local kKeys = { 36, 38, 40, 42 }
-- Ardour tells a plug-in its place in ticks of 1920 to the quarter, rounded. Where playing starts on
-- such a tick the samples are exact; elsewhere a tick may be missing or too much.
local kTick = 13

-- The notes of "march" between two quarters, where a quarter falls on a sample.
local function march(from, to, sampleOf)
    local notes = {}
    for quarter = from, to do
        notes[#notes + 1] = { kKeys[quarter % 4 + 1], sampleOf(quarter), sampleOf(quarter + 0.5) }
    end
    return notes
end

local function at(tempo)
    return function(quarters) return quarters * studio.rate * 60 / tempo // 1 end
end

studio.open()
studio.playPlainly()
studio.choose(0, "march", 36)

studio.checkNotes(studio.play(0, 8 * 24000), march(0, 7, at(120)), 0, "from the start")
studio.checkNotes(studio.play(5 * 24000, 10 * 24000), march(5, 9, at(120)), 0, "from bar 2, beat 2")
studio.checkNotes(studio.play(100001, 8 * 24000), march(5, 7, at(120)), kTick, "from anywhere")

studio.locate(0)
studio.forgetEvents()
studio.start()
studio.waitForSample(60000)
studio.locateRolling(10 * 24000)
studio.waitForSample(13 * 24000)
studio.stop()
local jump = studio.events()
studio.checkNothingHangs(jump)
local landed = 1
while jump[landed] and jump[landed].sample < 10 * 24000 do
    landed = landed + 1
end
studio.checkNotes(jump, march(0, 2, at(120)), 0, "before a locate while rolling")
studio.checkNotes({ table.unpack(jump, landed) }, march(10, 12, at(120)), 0, "after it")

studio.writeTempoMap({ [0] = 97 }, {})
studio.checkNotes(studio.play(0, 6 * 30000), march(0, 5, at(97)), 0, "at 97")

-- Ardour tells of the new tempo at the next block only, in ticks again.
studio.writeTempoMap({ [0] = 120, [4 * 24000] = 90 }, {})
local function slower(quarters)
    return quarters <= 4 and quarters * 24000 or 4 * 24000 + (quarters - 4) * 32000
end
studio.checkNotes(studio.play(0, slower(9)), march(0, 8, slower), 17, "from 120 to 90")
studio.finish()
