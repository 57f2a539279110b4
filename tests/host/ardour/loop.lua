-- Ardour's loop range: every round starts on its sample, and what sounds at its end is switched off.
local studio = dofile(arg[3] .. "/studio.lua")
local kStart, kEnd = 4 * 24000, 7 * 24000 + 6000 -- the last note is cut in its middle
local kRounds = 4

studio.open()
studio.playPlainly()
studio.choose(0, "march", 36)
Session:locations():add_range(Temporal.timepos_t(kStart), Temporal.timepos_t(kEnd))
-- Lua can make a range but not a loop of it.
studio.editSession(function(text) return text:gsub('"IsRangeMarker"', '"IsAutoLoop"') end)

studio.locate(kStart)
studio.forgetEvents()
Session:request_play_loop(true, false)
studio.waitFor("the rounds", function() return #studio.ons(studio.events()) > 4 * kRounds end)
studio.stop()
Session:request_play_loop(false, false)

local wanted = {}
for round = 1, kRounds do
    for i, key in ipairs({ 36, 38, 40, 42 }) do
        wanted[#wanted + 1] = { key, kStart + (i - 1) * 24000,
                                i < 4 and kStart + (i - 1) * 24000 + 12000 or kStart }
    end
end
local events = studio.events()
studio.checkNotes(events, wanted, 0, "in the loop")
studio.checkNothingHangs(events)
for _, event in ipairs(events) do
    studio.check(event.sample >= kStart and event.sample < kEnd,
                 "an event lies outside the loop, at " .. event.sample)
end
studio.finish()
