-- Puts one MIDI message at a time, handed over in shared memory, before what passes through.
-- Memory: 0 is 1 while a message waits; from 1 on its length and its bytes.
ardour {
    ["type"] = "dsp",
    name = "Feeder",
    author = "Korvanel",
    license = "GPLv3",
    description = "Sends the messages that a test hands over."
}

function dsp_ioconfig()
    return { { midi_in = 1, midi_out = 1, audio_in = 0, audio_out = 0 } }
end

function dsp_init(rate)
    self:shmem():allocate(8)
    self:shmem():clear()
end

function dsp_run(ins, outs, frames)
    local sent = {}
    if self:shmem():atomic_get_int(0) == 1 then
        local words = self:shmem():to_int(1):array()
        local bytes = {}
        for i = 1, words[1] do
            bytes[i] = words[1 + i]
        end
        sent[1] = { time = 1, data = bytes }
        self:shmem():atomic_set_int(0, 0)
    end
    for _, event in pairs(midiin) do
        sent[#sent + 1] = { time = event.time, data = event.data }
    end
    for i, event in ipairs(sent) do
        midiout[i] = event
    end
end
