-- Outputs have a latency, and Ardour runs what feeds them ahead by it, from before the song's start
-- and from within a block. The looper keeps step with that, within a tick of Ardour's.
local studio = dofile(arg[3] .. "/studio.lua")
local kTick = 13

studio.open(true)
studio.playPlainly()
studio.choose(0, "march", 36)
local events = studio.play(0, 8 * 24000)
local ahead = Session:worst_latency_preroll()
studio.check(ahead > 0, "there is no latency to keep step with")

-- The transport's sample stands still while the song's first note is sent ahead.
local keys, wanted = { 36, 38, 40, 42 }, {}
studio.equal(studio.ons(events)[1].key, 36, "the first note")
while events[1].sample < 24000 - ahead - kTick do
    table.remove(events, 1)
end
for quarter = 1, 7 do
    local on = quarter * 24000 - ahead
    wanted[quarter] = { keys[quarter % 4 + 1], on, on + 12000 }
end
studio.checkNotes(events, wanted, kTick, "ahead by " .. ahead)
studio.finish()
