-- A session with the looper on a MIDI track, a feeder before it and a probe behind it, and the hands
-- that play on it. Every test's script starts here.
--   arg[1]  lv2 or vst3     arg[2]  the session's folder     arg[3]  where this file is
local kPatience = 60 -- seconds for what a busy machine is slow at
local kRate = 48000
local kUser = ARDOUR.TransportRequestSource.TRS_UI

local studio = dofile(arg[3] .. "/judge.lua")
studio.format, studio.folder, studio.rate = arg[1], arg[2], kRate

function studio.waitFor(what, condition)
    for _ = 1, kPatience * 200 do
        if condition() then
            return
        end
        ARDOUR.LuaAPI.usleep(5000)
    end
    error("waited in vain for " .. what)
end

-- Setting up --------------------------------------------------------------------------------------

--- Time flies in the silent backend. Nothing is connected to its outputs, whose latency Ardour would
--- play ahead of, unless told.
local function startEngine(connected)
    io.stdout:setvbuf("no")
    local backend = AudioEngine:set_backend("None (Dummy)", "korvanel", "")
    assert(backend:set_driver("10x Speed") == 0)
    backend:set_sample_rate(kRate)
    backend:set_buffer_size(1024)
    if not connected then
        local config = ARDOUR.config()
        config:set_auto_connect_standard_busses(false)
        config:set_auditioner_output_left("")
        config:set_auditioner_output_right("")
    end
end

function studio.pluginInfo()
    local kind = studio.format == "lv2" and ARDOUR.PluginType.LV2 or ARDOUR.PluginType.VST3
    for info in ARDOUR.LuaAPI.list_plugins():iter() do
        if info.name == "Korvanel Looper" and info.type == kind then
            return info
        end
    end
    error("Ardour does not know the plug-in")
end

function studio.newTrack(name)
    local midi = ARDOUR.ChanCount(ARDOUR.DataType("midi"), 1)
    local tracks = Session:new_midi_track(midi, midi, false, ARDOUR.PluginInfo(), nil, nil, 1, name,
                                          ARDOUR.PresentationInfo.max_order,
                                          ARDOUR.TrackMode.Normal, true)
    return tracks:front()
end

local function memory(processor)
    return processor:to_plugininsert():plugin(0):to_luaproc():shmem()
end

local function useProcessors(feeder, looper, probe)
    studio.feeder, studio.probe = memory(feeder), memory(probe)
    studio.looper = looper
    studio.plugin = looper:to_plugininsert():plugin(0)
end

--- A new session with the looper's track.
function studio.open(connected)
    startEngine(connected)
    Session = assert(create_session(studio.folder, "test", kRate))
    studio.track = studio.newTrack("Looper")
    local info = studio.pluginInfo()
    local chain = { ARDOUR.LuaAPI.new_luaproc(Session, "Feeder"),
                    ARDOUR.LuaAPI.new_plugin(Session, info.unique_id, info.type, ""),
                    ARDOUR.LuaAPI.new_luaproc(Session, "Probe") }
    for i, processor in ipairs(chain) do
        assert(not processor:isnil(), "a processor cannot be made")
        assert(studio.track:add_processor_by_index(processor, i - 1, nil, true) == 0)
    end
    useProcessors(table.unpack(chain))
end

--- The session that was saved, as a user opens it.
function studio.reopen()
    startEngine()
    Session = assert(load_session(studio.folder, "test"))
    studio.track = Session:route_by_name("Looper")
    useProcessors(studio.track:nth_plugin(0), studio.track:nth_plugin(1), studio.track:nth_plugin(2))
end

function studio.save()
    assert(Session:save_state("", false, false, false, false, false) == 0)
end

local function close()
    studio.track, studio.looper, studio.plugin = nil, nil, nil
    studio.probe, studio.feeder, Session = nil, nil, nil
    collectgarbage()
    close_session()
end

--- Saves the session, changes its file and opens it again: for what Ardour's Lua has no words for.
function studio.editSession(change)
    studio.save()
    close()
    local path = studio.folder .. "/test.ardour"
    local file = assert(io.open(path))
    local text = change(file:read("a"))
    file:close()
    file = assert(io.open(path, "w"))
    file:write(text)
    file:close()
    studio.reopen()
end

--- Ends the script: the runner looks for the last line.
function studio.finish()
    close()
    print(studio.failures == 0 and "ALL GOOD" or studio.failures .. " failures")
    quit()
end

-- Parameters --------------------------------------------------------------------------------------

--- The number of a parameter, counted among all, and its number among the host's controls.
function studio.parameter(name)
    local control = 0
    for i = 0, studio.plugin:parameter_count() - 1 do
        if studio.plugin:parameter_is_control(i) and studio.plugin:parameter_is_input(i) then
            local _, out = studio.plugin:get_parameter_descriptor(i, ARDOUR.ParameterDescriptor())
            if out[2].label == name then
                return control, out[2], i
            end
            control = control + 1
        end
    end
    error("there is no parameter " .. name)
end

--- Ardour knows the values of a VST3 plug-in as parts of their range.
function studio.toHost(value, low, high)
    return studio.format == "vst3" and (value - low) / (high - low) or value
end

function studio.set(name, value, low, high)
    local control = studio.parameter(name)
    assert(ARDOUR.LuaAPI.set_processor_param(studio.looper, control,
                                             studio.toHost(value, low, high)))
end

function studio.setVelocityAdd(value)
    studio.set("Velocity Add", value, -127, 127)
end

-- Playing -----------------------------------------------------------------------------------------

--- Some blocks later: requests have been taken up then.
local function letBlocksPass()
    local now = Session:engine():processed_samples()
    studio.waitFor("Ardour to go on", function()
        return Session:engine():processed_samples() > now + 4 * 1024
    end)
end

function studio.locate(sample)
    Session:request_locate(sample, false, ARDOUR.LocateTransportDisposition.MustStop, kUser)
    letBlocksPass()
    studio.waitFor("the locate", function()
        return Session:transport_sample() == sample and not Session:transport_state_rolling()
    end)
end

--- Goes elsewhere without a stop.
function studio.locateRolling(sample)
    Session:request_locate(sample, false, ARDOUR.LocateTransportDisposition.MustRoll, kUser)
end

function studio.start()
    Session:request_roll(kUser)
end

function studio.stop()
    Session:request_stop(false, false, kUser)
    studio.waitFor("the stop", function()
        return not Session:transport_rolling() and not Session:transport_state_rolling()
    end)
    letBlocksPass()
end

function studio.waitForSample(sample)
    studio.waitFor("sample " .. sample, function() return Session:transport_sample() >= sample end)
end

function studio.forgetEvents()
    studio.probe:atomic_set_int(0, 0)
end

--- What the probe has noted down so far: sample, status, key, velocity.
function studio.events()
    local words = studio.probe:to_int(1):array()
    local result = {}
    for i = 0, studio.probe:atomic_get_int(0) - 1 do
        result[i + 1] = { sample = words[4 * i + 1], status = words[4 * i + 2],
                          key = words[4 * i + 3], velocity = words[4 * i + 4] }
    end
    return result
end

--- Writes the song's tempos or meters: { [sample] = tempo } or { [sample] = { beats, unit } }.
function studio.writeTempoMap(tempos, meters)
    local map = Temporal.TempoMap.fetch_writable()
    for sample, meter in pairs(meters) do
        map:set_meter(Temporal.Meter(meter[1], meter[2]), Temporal.timepos_t(sample))
    end
    for sample, tempo in pairs(tempos) do
        map:set_tempo(Temporal.Tempo(tempo, tempo, 4), Temporal.timepos_t(sample))
    end
    Temporal.TempoMap.update(map)
end

--- Plays from one sample until another is passed. @return the events
function studio.play(from, to)
    studio.locate(from)
    studio.forgetEvents()
    studio.start()
    studio.waitForSample(to)
    studio.stop()
    local events = studio.events()
    studio.checkNothingHangs(events)
    return events
end

-- Patterns ----------------------------------------------------------------------------------------

function studio.send(...)
    local bytes = { ... }
    local words = studio.feeder:to_int(1):array()
    words[1] = #bytes
    for i, byte in ipairs(bytes) do
        words[1 + i] = byte
    end
    studio.feeder:atomic_set_int(0, 1)
    studio.waitFor("a message to go", function() return studio.feeder:atomic_get_int(0) == 0 end)
end

--- The n-th pattern of the style: by MIDI, or by the VST3 plug-in's programs, which Ardour shows as
--- presets. Waits until it is heard.
function studio.choose(program, name, firstKey)
    if studio.format == "lv2" then
        studio.send(0xC0, program)
    else
        local preset = studio.plugin:preset_by_label(name)
        assert(preset and preset.valid, "there is no program " .. name)
        assert(studio.plugin:load_preset(preset))
    end
    studio.waitFor("pattern " .. name, function()
        local heard = studio.ons(studio.play(0, 4096))
        return #heard > 0 and heard[1].key == firstKey
    end)
end

--- Velocities as written in the pattern.
function studio.playPlainly()
    studio.set("Random Velocity", 0, 0, 1)
    studio.setVelocityAdd(0)
end

return studio
