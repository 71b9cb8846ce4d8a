// What the person at the page is making: two looks of the effect's parameters, the frame, and the way back.
// Everything that is shown follows from it; it tells of every change by a "change" event.
import { keyAt, valueAt, withKey, withoutKey, withValue } from './curve';
import { History } from './history';
import { hasValue, isStepped } from './session';
import type { Curve, Curves, Parameter, Session, State, Value } from './session';

export type Look = 'A' | 'B';

interface Work {
  readonly look: Look;
  readonly looks: { readonly A: Curves; readonly B: Curves };
}

export class Store extends EventTarget {
  private readonly history: History<Work>;
  private currentFrame: number;

  constructor(readonly session: Session) {
    super();
    const curves = curvesOf(session.state, session.parameters);
    this.history = new History<Work>({ look: 'A', looks: { A: curves, B: curves } });
    this.currentFrame = session.state.frame;
  }

  get look(): Look {
    return this.history.present.look;
  }

  get curves(): Curves {
    return this.history.present.looks[this.look];
  }

  get frame(): number {
    return this.currentFrame;
  }

  get frames(): readonly number[] {
    return this.session.picture.frames;
  }

  // The frame's place among those of the shot.
  get place(): number {
    return Math.max(this.frames.indexOf(this.currentFrame), 0);
  }

  get canUndo(): boolean {
    return this.history.canUndo;
  }

  get canRedo(): boolean {
    return this.history.canRedo;
  }

  parameter(key: string): Parameter | undefined {
    return this.session.parameters.find((parameter) => parameter.key === key);
  }

  curve(key: string): Curve | undefined {
    return this.curves[key];
  }

  value(key: string): Value | undefined {
    const curve = this.curve(key);
    return curve === undefined ? undefined : valueAt(curve, this.frame);
  }

  number(key: string): number | undefined {
    const value = this.value(key);
    return typeof value === 'number' ? value : undefined;
  }

  setFrame(frame: number): void {
    if (frame === this.currentFrame || !this.frames.includes(frame)) return;
    this.currentFrame = frame;
    this.tell();
  }

  setPlace(place: number): void {
    const frame = this.frames[Math.min(Math.max(place, 0), this.frames.length - 1)];
    if (frame !== undefined) this.setFrame(frame);
  }

  // Sets the value at this frame. Calls with the same gesture are one step of undo, until endGesture().
  setValue(key: string, value: Value, gesture: string | null = null): void {
    this.setValues({ [key]: value }, gesture);
  }

  setValues(values: Readonly<Record<string, Value>>, gesture: string | null = null): void {
    const changed: Record<string, Curve> = {};
    for (const [key, value] of Object.entries(values)) {
      const curve = this.curve(key);
      changed[key] = curve === undefined ? value : withValue(curve, this.frame, value);
    }
    this.setCurves({ ...this.curves, ...changed }, gesture);
  }

  setCurve(key: string, curve: Curve, gesture: string | null = null): void {
    this.setCurves({ ...this.curves, [key]: curve }, gesture);
  }

  endGesture(): void {
    this.history.endGesture();
  }

  // Adds a key with the value shown at this frame, or takes away the one that is there.
  toggleKey(key: string): void {
    const curve = this.curve(key);
    const parameter = this.parameter(key);
    if (curve === undefined || !parameter) return;
    const kind = isStepped(parameter.type) ? 'hold' : undefined;
    const isThere = keyAt(curve, this.frame) !== undefined;
    this.setCurve(
      key,
      isThere ? withoutKey(curve, this.frame) : withKey(curve, this.frame, valueAt(curve, this.frame), kind),
    );
  }

  reset(key: string): void {
    const value = this.parameter(key)?.default;
    if (value !== undefined && value !== null) this.setCurve(key, value);
  }

  isDefault(key: string): boolean {
    const value = this.parameter(key)?.default;
    return value === undefined || value === null || JSON.stringify(this.curve(key)) === JSON.stringify(value);
  }

  showLook(look: Look): void {
    if (look === this.look) return;
    this.change({ ...this.history.present, look });
  }

  copyToOtherLook(): void {
    const curves = this.curves;
    this.change({ ...this.history.present, looks: { A: curves, B: curves } });
  }

  // Takes over what the server has made of a loaded preset.
  load(state: State): void {
    this.setCurves(curvesOf(state, this.session.parameters), null);
  }

  undo(): void {
    if (this.history.undo()) this.tell();
  }

  redo(): void {
    if (this.history.redo()) this.tell();
  }

  private setCurves(curves: Curves, gesture: string | null): void {
    const present = this.history.present;
    if (JSON.stringify(curves) === JSON.stringify(this.curves)) return;
    this.change({ ...present, looks: { ...present.looks, [present.look]: curves } }, gesture);
  }

  private change(work: Work, gesture: string | null = null): void {
    this.history.change(work, gesture);
    this.tell();
  }

  private tell(): void {
    this.dispatchEvent(new Event('change'));
  }
}

function curvesOf(state: State, parameters: readonly Parameter[]): Curves {
  const curves: Record<string, Curve> = {};
  for (const { key, type } of parameters) {
    if (!hasValue(type)) continue;
    const keys = state.keys[key];
    const curve = keys && keys.length > 0 ? keys : state.parameters[key];
    if (curve !== undefined && curve !== null) curves[key] = curve;
  }
  return curves;
}
