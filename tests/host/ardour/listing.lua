-- What Ardour shows of the plug-in and its parameters.
local studio = dofile(arg[3] .. "/studio.lua")

-- Label, lowest, highest and first value; what each format adds is named apart.
local kParameters = {
    { "Velocity Add", -127, 127, -10 },
    { "Random Minimum", -127, 0, -15 },
    { "Random Maximum", 0, 127, 10 },
    { "Random Strength", 0, 100, 100 },
    { "Use Pitch Wheel", 0, 1, 0 },
    { "Use Velocity Controller", 0, 1, 0 },
    { "Random Velocity", 0, 1, 1 },
    { "MIDI Thru", 0, 1, 0 },
    { "Tempo", 0, 2, 1 },
    { "Drag Repeat", 1, 999, 1 },
}
if studio.format == "lv2" then
    table.insert(kParameters, { "Enabled", 0, 1, 1 })
    table.insert(kParameters, { "Free-Wheeling", 0, 1, 0 }) -- which Ardour itself turns
else
    table.insert(kParameters, { "Bypass", 0, 1, 0 })
end

studio.open()
local info = studio.pluginInfo()
studio.equal(info.creator, "Korvanel", "the maker")
studio.equal(info.n_inputs:n_midi(), 1, "the number of MIDI inputs")
studio.equal(info.n_outputs:n_midi(), 1, "the number of MIDI outputs")
studio.equal(info.n_inputs:n_audio() + info.n_outputs:n_audio(), 0, "the number of audio ports")
studio.check(not info:is_instrument(), "the plug-in is an instrument")

for _, parameter in ipairs(kParameters) do
    local name, low, high, first = table.unpack(parameter)
    local _, descriptor = studio.parameter(name)
    studio.equal(descriptor.lower, studio.toHost(low, low, high), name .. "'s lowest value")
    studio.equal(descriptor.upper, studio.toHost(high, low, high), name .. "'s highest value")
    local normal = studio.toHost(first, low, high)
    studio.check(math.abs(descriptor.normal - normal) < 1e-6,
                 string.format("%s is %f at first, not %f", name, descriptor.normal, normal))
end
local controls = 0
for i = 0, studio.plugin:parameter_count() - 1 do
    controls = controls + (studio.plugin:parameter_is_control(i) and 1 or 0)
end
studio.equal(controls, #kParameters, "the number of parameters")
studio.finish()
