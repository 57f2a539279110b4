-- Meters other than 4/4.
local studio = dofile(arg[3] .. "/studio.lua")

-- The notes of "waltz", an eighth on every quarter.
local function waltz(from, to)
    local keys, notes = { 50, 52, 54 }, {}
    for quarter = from, to do
        notes[#notes + 1] = { keys[quarter % 3 + 1], quarter * 24000, quarter * 24000 + 12000 }
    end
    return notes
end

studio.open()
studio.playPlainly()
studio.choose(2, "waltz", 50)
for _, meter in ipairs({ { 3, 4 }, { 6, 8 }, { 3, 2 } }) do
    local name = meter[1] .. "/" .. meter[2]
    studio.writeTempoMap({ [0] = 120 }, { [0] = meter })
    studio.checkNotes(studio.play(0, 7 * 24000), waltz(0, 6), 0, name .. " from the start")
    studio.checkNotes(studio.play(7 * 24000, 10 * 24000), waltz(7, 9), 0, name .. " from quarter 7")
end
studio.finish()
