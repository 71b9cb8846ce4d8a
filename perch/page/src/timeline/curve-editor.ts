// The curve of one parameter, with its keys to be moved by pointer or keyboard.
//
//   drag a key              moves it in frames, and in value where the parameter has a range
//   double click            adds a key there
//   arrow keys on a key     move it; with Shift ten steps
//   H, L, S; Delete         its kind; takes it away
import { html, svg } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';
import { drag } from '../app/drag';
import { StoreElement } from '../app/store-element';
import { shared } from '../app/theme';
import { keysOf, valueAt, withKey, withKind, withMovedKey, withoutKey } from '../model/curve';
import { clamped, rounded, shown } from '../model/number';
import type { Curve, Key, KeyKind, Parameter, Value } from '../model/session';
import { CurveScale, numbersOf } from './curve-scale';
import { curveStyle } from './curve-style';

const kinds: Readonly<Record<string, KeyKind>> = { h: 'hold', l: 'linear', s: 'smooth' };

@customElement('curve-editor')
export class CurveEditor extends StoreElement {
  static override styles = [shared, curveStyle];

  @property() key = '';
  @property({ type: Number }) loopFirst = 0;
  @property({ type: Number }) loopLast = 0;
  @state() private width = 300;
  @state() private height = 90;
  private readonly measure = new ResizeObserver(([entry]) => {
    this.width = entry?.contentRect.width ?? this.width;
    this.height = entry?.contentRect.height ?? this.height;
  });

  override connectedCallback(): void {
    super.connectedCallback();
    this.measure.observe(this);
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    this.measure.disconnect();
  }

  protected override render() {
    const parameter = this.store.parameter(this.key);
    const curve = this.store.curve(this.key);
    if (!parameter || curve === undefined) return html`<p class="dim">No parameter with a curve</p>`;
    const scale = this.scale(parameter, curve);
    const { width, height } = this;
    const [left, right] = [scale.x(this.loopFirst), scale.x(this.loopLast)];
    const now = scale.x(this.store.frame);
    return html`<svg
      width=${width}
      height=${height}
      role="group"
      aria-label="Keys of ${parameter.name}"
      @dblclick=${(event: MouseEvent) => this.addAt(event, parameter, curve)}
    >
      ${svg`<g aria-hidden="true">
        ${scale.ticks.map((tick) => svg`<line class="tick" x1=${left} x2=${right} y1=${scale.y(tick)} y2=${scale.y(tick)}></line>
          <text x=${width - 10} y=${Math.max(scale.y(tick) - 2, 10)}>${this.label(parameter, tick)}</text>`)}
        <rect class="outside" x="0" y="0" width=${Math.max(left, 0)} height=${height}></rect>
        <rect class="outside" x=${right} y="0" width=${Math.max(width - right, 0)} height=${height}></rect>
        <line class="now" x1=${now} x2=${now} y1="0" y2=${height}></line>
        ${numbersOf(parameter, valueAt(curve, this.store.frame)).map((_, i) => svg`<path class="curve" d=${this.path(scale, parameter, curve, i)}></path>`)}
      </g>
      ${keysOf(curve).map((key) => this.renderKey(scale, parameter, curve, key))}`}
    </svg>`;
  }

  // Numbers beside the lines across; items and ticks of a check box speak for themselves.
  private label(parameter: Parameter, tick: number): string {
    const isNumber = parameter.type === 'slider' || parameter.type === 'angle' || parameter.type === 'point';
    return isNumber ? shown(tick, tick % 1 === 0 ? 0 : 1) : '';
  }

  private scale(parameter: Parameter, curve: Curve): CurveScale {
    const { frames } = this.store;
    return new CurveScale(this.width, this.height, frames[0] ?? 0, frames.at(-1) ?? 0, parameter, curve);
  }

  // Sampled at every frame, as the shot is; a step is drawn upright at the frame where it happens.
  private path(scale: CurveScale, parameter: Parameter, curve: Curve, line: number): string {
    let path = '';
    let last = NaN;
    const first = this.store.frames[0] ?? 0;
    const end = this.store.frames.at(-1) ?? 0;
    for (let frame = first; frame <= end; frame += 1) {
      const value = numbersOf(parameter, valueAt(curve, frame))[line] ?? 0;
      const y = scale.y(value).toFixed(2);
      const before = keysOf(curve).filter((key) => key.frame < frame).at(-1);
      const isStep = path !== '' && before?.key === 'hold' && value !== last;
      path += `${path === '' ? 'M' : 'L'}${scale.x(frame).toFixed(2)} ${isStep ? scale.y(last).toFixed(2) : y}`;
      if (isStep) path += `V${y}`;
      last = value;
    }
    return path;
  }

  private renderKey(scale: CurveScale, parameter: Parameter, curve: Curve, key: Key) {
    const x = scale.x(key.frame);
    const y = scale.y(numbersOf(parameter, key.value)[0] ?? 0);
    const value = typeof key.value === 'number' ? shown(key.value, parameter.precision ?? 0) : String(key.value);
    return svg`<g class="key ${key.key} ${key.frame === this.store.frame ? 'here' : ''}" role="button" tabindex="0"
      aria-label="Key at frame ${key.frame}: ${value}, ${key.key}"
      transform="translate(${x} ${y})"
      @pointerdown=${(event: PointerEvent) => this.grab(event, parameter, key)}
      @keydown=${(event: KeyboardEvent) => this.press(event, parameter, curve, key)}>
      <rect class="area" x="-9" y="-9" width="18" height="18"></rect>
      ${key.key === 'smooth' ? svg`<circle r="4.5"></circle>` : key.key === 'hold' ? svg`<rect x="-4" y="-4" width="8" height="8"></rect>` : svg`<path d="M0-5.5 5.5 0 0 5.5-5.5 0Z"></path>`}
    </g>`;
  }

  private heldTo(parameter: Parameter, value: number): number {
    const { minimum = -Infinity, maximum = Infinity, precision = 0 } = parameter;
    return rounded(clamped(value, minimum, maximum), precision);
  }

  private grab(event: PointerEvent, parameter: Parameter, key: Key): void {
    event.preventDefault();
    event.stopPropagation();
    (event.currentTarget as SVGElement).focus();
    const start = this.store.curve(this.key) as Curve;
    const scale = this.scale(parameter, start);
    const { left, top } = this.getBoundingClientRect();
    const gesture = `key ${event.timeStamp}`;
    this.store.setFrame(key.frame);
    const move = ({ clientX, clientY }: PointerEvent) => {
      const frame = this.nearest(scale.frame(clientX - left));
      const value = typeof key.value === 'number' ? this.heldTo(parameter, scale.value(clientY - top)) : key.value;
      this.store.setCurve(this.key, withMovedKey(start, key.frame, frame, value), gesture);
      this.store.setFrame(frame);
    };
    drag(move, () => this.store.endGesture());
  }

  private press(event: KeyboardEvent, parameter: Parameter, curve: Curve, key: Key): void {
    const steps = event.shiftKey ? 10 : 1;
    const by = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] }[event.key];
    const kind = kinds[event.key.toLowerCase()];
    if (by) this.moveKey(parameter, curve, key, (by[0] as number) * steps, (by[1] as number) * steps);
    else if (event.key === 'Delete' || event.key === 'Backspace')
      this.store.setCurve(this.key, withoutKey(curve, key.frame));
    else if (kind && typeof key.value === 'number' && !event.ctrlKey)
      this.store.setCurve(this.key, withKind(curve, key.frame, kind));
    else if (event.key === 'Enter') this.store.setFrame(key.frame);
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  private moveKey(parameter: Parameter, curve: Curve, key: Key, byFrames: number, byValue: number): void {
    const { frames } = this.store;
    const from = Math.max(frames.indexOf(key.frame), 0);
    const frame = byFrames === 0 ? key.frame : (frames[clamped(from + byFrames, 0, frames.length - 1)] ?? key.frame);
    const step = 10 ** -(parameter.precision ?? 0);
    const value = typeof key.value === 'number' ? this.heldTo(parameter, key.value + byValue * step) : key.value;
    this.store.setCurve(this.key, withMovedKey(curve, key.frame, frame, value));
    this.store.setFrame(frame);
    void this.focusKey(frame);
  }

  // A moved key is drawn anew; the keyboard stays with it.
  private async focusKey(frame: number): Promise<void> {
    await this.updateComplete;
    const keys = [...(this.shadowRoot?.querySelectorAll<SVGGElement>('.key') ?? [])];
    keys.find((key) => key.getAttribute('aria-label')?.startsWith(`Key at frame ${frame}:`))?.focus();
  }

  private addAt(event: MouseEvent, parameter: Parameter, curve: Curve): void {
    const { left, top } = this.getBoundingClientRect();
    const scale = this.scale(parameter, curve);
    const frame = this.nearest(scale.frame(event.clientX - left));
    const there: Value = valueAt(curve, frame);
    const value = typeof there === 'number' ? this.heldTo(parameter, scale.value(event.clientY - top)) : there;
    this.store.setCurve(this.key, withKey(curve, frame, value, typeof there === 'number' ? undefined : 'hold'));
  }

  private nearest(frame: number): number {
    return this.store.frames.reduce((best, other) => (Math.abs(other - frame) < Math.abs(best - frame) ? other : best));
  }
}
