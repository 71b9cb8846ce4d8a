// Two effects as the server would tell of them: one that focuses, and one with every type of parameter.
import type { Parameter, Value } from '../../src/model/session';

const seen = { enabled: true, visible: true } as const;

const slider = (name: string, [minimum, maximum]: readonly [number, number], unit: string, value: number, rest = {}): Parameter => ({
  key: name, name, option: name.toLowerCase().replaceAll(' ', '-'), type: 'slider', minimum, maximum, sliderMinimum: minimum,
  sliderMaximum: maximum, default: value, precision: 1, unit, ...seen, ...rest,
});

const other = (name: string, type: Parameter['type'], value: Value | null, rest = {}): Parameter => ({
  key: name, name, option: name.toLowerCase().replaceAll(' ', '-'), type, default: value, ...seen, ...rest,
});

export const focusing: readonly Parameter[] = [
  other('View Mode', 'popup', 'Normal', { items: ['Normal', 'Focus'], hint: 'The blurred picture, or what is in focus.' }),
  other('Blur Type', 'popup', 'Coarse', { items: ['Coarse', 'Fine'] }),
  other('Control Layer', 'layer', null),
  other('Control Channel', 'popup', 'Luma', { items: ['Alpha', 'Red', 'Green', 'Blue', 'Luma', 'Lightness', 'Brightness'] }),
  slider('Focal Point', [0, 100], '%', 0, { hint: 'The depth that is sharp.' }),
  slider('In-focus Range', [0, 100], '%', 0, { hint: 'How far around the focal point stays sharp.' }),
  slider('Maximum Blur', [0, 200], 'px', 10, { sliderMaximum: 100 }),
  slider('Aspect Ratio', [-1, 1], '', 0),
  other('Invert Control', 'checkbox', false, { label: 'Invert' }),
  other('Conform Control Size', 'checkbox', true, { label: 'Conform' }),
  slider('Blend With Original', [0, 100], '%', 0),
];

export const everything: readonly Parameter[] = [
  slider('Amount', [0, 100], '', 25, { precision: 0 }),
  other('Look', 'group', null),
  other('Direction', 'angle', 90, { precision: 1, unit: '°' }),
  other('Tint', 'colour', '#ff8000'),
  other('Inner', 'group', null),
  other('Centre', 'point', [320, 180]),
  other('Inner', 'group-end', null),
  other('Style', 'popup', 'Fine', { items: ['Coarse', '(-', 'Fine'] }),
  other('Look', 'group-end', null),
  other('Locked', 'checkbox', true, { enabled: false }),
  other('Hidden', 'checkbox', true, { visible: false }),
  other('Options', 'button', null),
];
