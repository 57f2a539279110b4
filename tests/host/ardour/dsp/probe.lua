-- Notes down every MIDI message with the transport's sample that it falls on, and lets it through.
-- Memory: 0 counts the messages; each has four words from 1 on: sample, status, data, data.
ardour {
    ["type"] = "dsp",
    name = "Probe",
    author = "Korvanel",
    license = "GPLv3",
    description = "Tells a test what passes through."
}

local kMessages = 8192

function dsp_ioconfig()
    return { { midi_in = 1, midi_out = 1, audio_in = 0, audio_out = 0 } }
end

function dsp_init(rate)
    self:shmem():allocate(1 + 4 * kMessages)
    self:shmem():clear()
end

function dsp_run(ins, outs, frames)
    local words = self:shmem():to_int(1):array()
    local count = self:shmem():atomic_get_int(0)
    for i, event in ipairs(midiin) do
        midiout[i] = { time = event.time, data = event.data }
        if count < kMessages then
            words[4 * count + 1] = Session:transport_sample() + event.time - 1 -- times count from 1
            words[4 * count + 2] = event.data[1]
            words[4 * count + 3] = event.data[2] or 0
            words[4 * count + 4] = event.data[3] or 0
            count = count + 1
        end
    end
    self:shmem():atomic_set_int(0, count)
end
