-- Judges what was heard: events are { sample, status, key, velocity }, in their order.
local judge = { failures = 0 }

function judge.check(good, what)
    if not good then
        judge.failures = judge.failures + 1
        print("FAILED: " .. what)
    end
    return good
end

function judge.equal(got, wanted, what)
    return judge.check(got == wanted,
                       string.format("%s is %s, not %s", what, tostring(got), tostring(wanted)))
end

local function isOn(event) return event.status & 0xF0 == 0x90 and event.velocity > 0 end
local function isOff(event)
    return event.status & 0xF0 == 0x80 or (event.status & 0xF0 == 0x90 and event.velocity == 0)
end

function judge.ons(events)
    local result = {}
    for _, event in ipairs(events) do
        if isOn(event) then
            result[#result + 1] = event
        end
    end
    return result
end

--- Ardour itself switches off what a stop leaves sounding, at the input of every plug-in and so of the
--- probe: a second off is no error, and stop.lua counts them.
function judge.checkNothingHangs(events)
    local offsMissing = {}
    for _, event in ipairs(events) do
        local note = (event.status & 0x0F) << 7 | event.key
        if isOn(event) then
            judge.check(not offsMissing[note], "key " .. event.key .. " is switched on twice")
            offsMissing[note] = true
        elseif isOff(event) then
            offsMissing[note] = nil
        end
    end
    for note in pairs(offsMissing) do
        judge.check(false, "key " .. (note & 0x7F) .. " hangs")
    end
end

local function offAfter(events, index)
    for i = index + 1, #events do
        if isOff(events[i]) and events[i].key == events[index].key then
            return events[i].sample
        end
    end
end

--- Compares the notes' starts and ends with { key, on, off } in the order of their starts; an end
--- that is nil is not looked at. What comes behind them is not either: a transport stops late.
--- @param tolerance  samples
function judge.checkNotes(events, wanted, tolerance, what)
    local function isNear(got, sample) return got and math.abs(got - sample) <= tolerance end
    local count = 0
    for i, event in ipairs(events) do
        if isOn(event) and count < #wanted then
            count = count + 1
            local key, on, off = table.unpack(wanted[count])
            judge.check(event.key == key and isNear(event.sample, on),
                        string.format("%s: key %d at %d, not key %d at %d", what, event.key,
                                      event.sample, key, on))
            judge.check(not off or isNear(offAfter(events, i), off),
                        string.format("%s: key %d is not off at %s", what, key, off))
        end
    end
    judge.equal(count, #wanted, what .. ": the number of notes")
end

return judge
