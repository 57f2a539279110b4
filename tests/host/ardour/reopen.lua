-- Pattern and parameters are those of the session that save.lua made, in another process.
local studio = dofile(arg[3] .. "/studio.lua")
studio.reopen()
local events = studio.play(0, 4 * 48000)
studio.checkNotes(events, { { 60, 0 }, { 60, 48000 }, { 60, 96000 }, { 60, 144000 } }, 0, "reopened")
for i, note in ipairs(studio.ons(events)) do
    studio.equal(note.velocity, 60, "velocity " .. i)
end
studio.finish()
