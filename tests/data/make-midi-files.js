// Makes Standard MIDI Files with somebody else's writer (the npm package test-midi-files), so that the reader's tests
// meet files whose bytes nobody here chose: running status, lyrics, several tracks, several meters, odd divisions.
//   node make-midi-files.js MODULES OUTPUT
// MODULES is the folder that holds the package; OUTPUT is the folder to fill.
const fs = require('fs');
const path = require('path');
const [modules, output] = process.argv.slice(2);
const writer = require(path.join(modules, 'test-midi-files'));
const JZZ = require(path.join(modules, 'jzz'));
const M = JZZ.MIDI;

function track(...events) {
    const made = new M.SMF.MTrk();
    for (const [tick, message] of events) made.add(tick, message);
    return made;
}

function file(format, division, ...tracks) {
    const made = new M.SMF(format, division);
    tracks.forEach(one => made.push(one));
    return made;
}

// SMPTE divisions have their own constructor: frames per second, then ticks per frame.
function smpteFile(fps, perFrame, one) {
    const made = new M.SMF(0, fps, perFrame);
    made.push(one);
    return made;
}

function note(channel, key, velocity, from, to) {
    return [[from, M.noteOn(channel, key, velocity)], [to, M.noteOff(channel, key, 64)]];
}

function scale(channel, step) {
    return [60, 62, 64, 65, 67, 69, 71, 72].flatMap((key, i) => note(channel, key, 100, i * step, (i + 1) * step));
}

const head = [[0, M.smfSeqName('Scales/C major')], [0, M.smfBPM(96)], [0, M.smfTimeSignature('4/4')], [0, M.smfKeySignature('C')]];

const files = {
    'scale-format-0': file(0, 96, track(...head, ...scale(0, 96), [800, M.smfEndOfTrack()])),
    'scale-format-1': file(1, 480, track(...head), track(...scale(3, 480), [4000, M.smfEndOfTrack()])),
    'notes-on-third-track': file(1, 240, track(...head), track([0, M.smfSeqName('empty')]), track(...scale(9, 120))),
    'waltz': file(0, 120, track([0, M.smfTimeSignature('3/4')], [0, M.smfTempo(400000)], ...scale(1, 60))),
    'seven-eight': file(0, 192, track([0, M.smfTimeSignature('7/8')], ...scale(1, 96))),
    'lyrics': file(0, 96, track(...scale(0, 96), [0, M.smfLyric('do')], [96, M.smfLyric('re/mi')])),
    'controllers': file(0, 96, track(...scale(0, 48), [10, M.control(0, 1, 64)], [20, M.control(0, 7, 100)],
        [30, M.pitchBend(0, 8192 + 100)], [40, M.pressure(0, 33)], [50, M.aftertouch(0, 60, 12)], [0, M.program(0, 5)])),
    'system-exclusive': file(0, 96, track([0, M.sxIdRequest()], [1, M.sxGM()], ...scale(2, 24))),
    'chords': file(0, 384, track(...[48, 52, 55, 60].flatMap(key => note(0, key, 90, 0, 1536)), ...scale(0, 192))),
    'overlapping-repeats': file(0, 96, track(...note(0, 60, 90, 0, 200), ...note(0, 60, 91, 100, 300))),
    'text-of-every-kind': file(0, 96, track([0, M.smfText('text')], [0, M.smfCopyright('nobody')], [0, M.smfMarker('A')],
        [0, M.smfCuePoint('cue')], [0, M.smfInstrName('kit')], ...scale(9, 12))),
    'tempo-changes': file(1, 96, track([0, M.smfBPM(60)], [96, M.smfBPM(120)], [192, M.smfBPM(240)]), track(...scale(0, 96))),
    'many-tracks': file(1, 96, ...Array.from({length: 16}, (_, channel) => track(...scale(channel, 24 + channel)))),
    'long-gap': file(0, 960, track(...note(0, 60, 100, 0, 960), ...note(0, 62, 100, 40000, 41000))),
    'highest-division': file(0, 32767, track(...scale(0, 32767))),
    'smpte-division': smpteFile(25, 40, track(...scale(0, 100))),
    'no-notes': file(0, 96, track(...head, [96, M.smfEndOfTrack()])),
    'extreme-keys': file(0, 96, track(...note(15, 0, 1, 0, 1), ...note(15, 127, 127, 0, 96))),
};

fs.mkdirSync(output, {recursive: true});
console.log = () => {}; // the package announces each file
for (const [name, data] of Object.entries(files)) writer.write(data, path.join(output, name + '.mid'));
