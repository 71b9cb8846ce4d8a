// What the server tells of the effect, the shot and the state; the shapes of its JSON.

// As a preset holds it: a number, true or false, the text of an item or colour, or the numbers of a point.
export type Value = number | boolean | string | readonly number[];

export type KeyKind = 'hold' | 'linear' | 'smooth';

export interface Key {
  readonly frame: number;
  readonly value: Value;
  readonly key: KeyKind;
}

// A value over time: one for all frames, or keys in the order of their frames.
export type Curve = Value | readonly Key[];
export type Curves = Readonly<Record<string, Curve>>;

export type ParameterType =
  | 'slider' | 'angle' | 'checkbox' | 'popup' | 'colour' | 'point' | 'layer'
  | 'group' | 'group-end' | 'button' | 'other';

export interface Parameter {
  readonly key: string; // its name in states; the option's where several parameters have one name
  readonly name: string;
  readonly option: string;
  readonly type: ParameterType;
  readonly minimum?: number;
  readonly maximum?: number;
  readonly sliderMinimum?: number;
  readonly sliderMaximum?: number;
  readonly default?: Value | null;
  readonly precision?: number;
  readonly unit?: string;
  readonly items?: readonly string[];
  readonly label?: string; // beside a check box
  readonly hint?: string;
  readonly enabled: boolean;
  readonly visible: boolean;
}

export interface State {
  readonly frame: number;
  readonly parameters: Readonly<Record<string, Value>>;
  readonly keys: Readonly<Record<string, readonly Key[]>>;
  readonly command: string;
  readonly serial: number;
}

export interface Session {
  readonly effect: { readonly name: string; readonly category: string };
  readonly picture: {
    readonly width: number;
    readonly height: number;
    readonly depth: 8 | 16;
    readonly frames: readonly number[];
    readonly rate: number;
    readonly input: string;
  };
  readonly layers: readonly { readonly parameter: string; readonly file: string }[];
  readonly parameters: readonly Parameter[];
  readonly pick: { readonly layer: string; readonly parameter: string } | null; // names
  readonly canSave: boolean;
  readonly warnings: readonly string[]; // told before the page came
  readonly state: State;
}

export interface PixelAnswer {
  readonly source: readonly number[];
  readonly result: readonly number[] | null;
  readonly layer: readonly number[] | null;
  readonly depth: number;
  readonly value: number | null;
  readonly distance: number | null;
}

export type PictureKind = 'result' | 'original' | 'layer' | 'focus';

export function isKeys(curve: Curve | undefined): curve is readonly Key[] {
  return Array.isArray(curve) && typeof curve[0] === 'object';
}

// Whether values between two keys exist: those of a check box, popup or layer only change at once.
export function isStepped(type: ParameterType): boolean {
  return type === 'checkbox' || type === 'popup' || type === 'layer';
}

export function hasValue(type: ParameterType): boolean {
  return !['group', 'group-end', 'button', 'other'].includes(type);
}

export function hasKeys(type: ParameterType): boolean {
  return hasValue(type) && type !== 'layer';
}
