// The stand-in's state: checks what is sent as the server does, and says what is rendered.
import { valueAt } from '../../src/model/curve';
import { hasValue, isKeys } from '../../src/model/session';
import type { Curve, Curves, Parameter, Session, State, Value } from '../../src/model/session';
import { everything, focusing } from './effects';

export class Refusal extends Error {
  constructor(readonly status: number, message: string) {
    super(message);
  }
}

export interface ShotOptions {
  readonly effect?: 'focusing' | 'everything';
  readonly canSave?: boolean;
  readonly warnings?: readonly string[];
}

interface Sent {
  readonly serial: number;
  readonly frame: number;
  readonly curves: Curves;
}

const kept = 8;

export class Shot {
  readonly frames = Array.from({ length: 24 }, (_, i) => i + 1);
  readonly parameters: readonly Parameter[];
  private states: Sent[];

  constructor(private readonly options: ShotOptions) {
    this.parameters = options.effect === 'everything' ? everything : focusing;
    const curves: Record<string, Curve> = {};
    for (const { name, type, default: value } of this.parameters)
      if (hasValue(type) && type !== 'layer') curves[name] = value as Value;
    this.states = [{ serial: 0, frame: 1, curves }];
  }

  get newest(): Sent {
    return this.states.at(-1) as Sent;
  }

  sent(serial: number): Sent {
    const found = this.states.find((state) => state.serial === serial);
    if (!found) throw new Refusal(409, `state ${serial} is no longer kept`);
    return found;
  }

  value(sent: Sent, name: string): Value {
    return valueAt(sent.curves[name] ?? 0, sent.frame);
  }

  take({ serial, frame, parameters }: { serial: number; frame: number; parameters: Curves }): void {
    if (serial <= this.newest.serial) return;
    if (!this.frames.includes(frame)) throw new Refusal(422, `the shot has no frame ${frame}`);
    for (const [name, curve] of Object.entries(parameters)) this.check(name, curve);
    this.states = [...this.states, { serial, frame, curves: parameters }].slice(-kept);
  }

  load(preset: Record<string, Curve>): void {
    const curves = { ...this.newest.curves };
    for (const [option, curve] of Object.entries(preset)) {
      const parameter = this.parameters.find((one) => one.option === option);
      if (!parameter) throw new Refusal(422, `the effect has no parameter "${option}"`);
      curves[parameter.name] = curve;
    }
    this.take({ serial: this.newest.serial + 1, frame: this.newest.frame, parameters: curves });
  }

  preset(): Record<string, Curve> {
    const preset: Record<string, Curve> = {};
    for (const { name, option, type } of this.parameters)
      if (hasValue(type) && type !== 'layer') preset[option] = this.newest.curves[name] as Curve;
    return preset;
  }

  state(): State {
    const { serial, frame, curves } = this.newest;
    const entries = Object.entries(curves);
    const options = this.parameters
      .filter(({ name, type }) => curves[name] !== undefined && type !== 'layer')
      .map(({ name, option }) => `--${option} ${JSON.stringify(curves[name])}`);
    return {
      serial,
      frame,
      parameters: Object.fromEntries(entries.map(([name, curve]) => [name, valueAt(curve, frame)])),
      keys: Object.fromEntries(entries.flatMap(([name, curve]) => (isKeys(curve) ? [[name, curve]] : []))),
      command: `perch render -i shot.####.png --control-layer depth.####.png ${options.join(' ')}`,
    };
  }

  session(size: { width: number; height: number }): Session {
    const isFocusing = this.options.effect !== 'everything';
    return {
      effect: { name: isFocusing ? 'Kestrel' : 'Everything', category: 'Blur' },
      picture: { ...size, depth: 8, frames: this.frames, rate: 24, input: 'shot.####.png' },
      layers: isFocusing ? [{ parameter: 'Control Layer', file: 'depth.####.png' }] : [],
      parameters: this.parameters,
      pick: isFocusing ? { layer: 'Control Layer', parameter: 'Focal Point' } : null,
      canSave: this.options.canSave ?? false,
      warnings: this.options.warnings ?? [],
      state: this.state(),
    };
  }

  private check(name: string, curve: Curve): void {
    const parameter = this.parameters.find((one) => one.name === name);
    if (!parameter) throw new Refusal(422, `the effect has no parameter "${name}"`);
    const { minimum = -Infinity, maximum = Infinity, items } = parameter;
    for (const value of isKeys(curve) ? curve.map((key) => key.value) : [curve as Value]) {
      if (typeof value === 'number' && (value < minimum || value > maximum))
        throw new Refusal(422, `${name} takes a number from ${minimum} to ${maximum}`);
      if (items && !items.includes(String(value))) throw new Refusal(422, `${name} has no item "${String(value)}"`);
    }
  }
}
