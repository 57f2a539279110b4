-- What Ardour sets, by hand or by automation, is heard.
local studio = dofile(arg[3] .. "/studio.lua")

local function velocities(events)
    local result = {}
    for i, note in ipairs(studio.ons(events)) do
        result[i] = note.velocity
    end
    return result
end

studio.open()
studio.playPlainly()
studio.choose(0, "march", 36) -- all of velocity 100
for _, add in ipairs({ -40, 0, 20 }) do
    studio.setVelocityAdd(add)
    for i, velocity in ipairs(velocities(studio.play(0, 4 * 24000))) do
        studio.equal(velocity, 100 + add, string.format("with %d, velocity %d", add, i))
    end
end

-- From -60 to 0 between the third and the fourth note.
local control, _, number = studio.parameter("Velocity Add")
local _, curve = ARDOUR.LuaAPI.plugin_automation(studio.looper, control)
for _, point in ipairs({ { 0, -60 }, { 54000, -60 }, { 66000, 0 }, { 200000, 0 } }) do
    curve:add(Temporal.timepos_t(point[1]), studio.toHost(point[2], -127, 127), false, true)
end
local id = Evoral.Parameter(ARDOUR.AutomationType.PluginAutomation, 0, number)
studio.looper:to_automatable():automation_control(id, false):set_automation_state(ARDOUR.AutoState.Play)
local heard = velocities(studio.play(0, 6 * 24000))
for i, wanted in ipairs({ 40, 40, 40, 100, 100, 100 }) do
    studio.equal(heard[i], wanted, "automated, velocity " .. i)
end
studio.finish()
