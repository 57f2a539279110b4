-- What sounds when the transport stops or jumps is switched off, by the looper itself.
local studio = dofile(arg[3] .. "/studio.lua")
local kHeld = 60 -- "tenuto" sounds without a gap

-- The last notes and what ended them: the looper's off, and Ardour's own at the probe's input.
local function offsAfterLastOn(events)
    local offs = 0
    for _, event in ipairs(events) do
        offs = event.velocity > 0 and event.status & 0xF0 == 0x90 and 0 or offs + 1
    end
    return offs
end

studio.open()
studio.playPlainly()
studio.choose(1, "tenuto", kHeld)
for round = 1, 5 do
    local events = studio.play(0, 24000 * round)
    studio.equal(offsAfterLastOn(events), 2, "the number of offs after stop " .. round)
end

studio.locate(0)
studio.forgetEvents()
studio.start()
studio.waitForSample(24000)
studio.locateRolling(24000 * 10)
studio.waitForSample(24000 * 12 - 12000)
studio.stop()
studio.checkNothingHangs(studio.events())
studio.finish()
