// The shot's frames: transport, the frame's slider, and below it the curve of one parameter.
import { html, nothing, svg } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';
import { place } from '../app/place';
import { StoreElement } from '../app/store-element';
import { shared } from '../app/theme';
import '../controls/number-field';
import type { NumberField } from '../controls/number-field';
import { rangeStyle } from '../controls/range-style';
import { focusParameters } from '../model/focus';
import { keyAt, keysOf, withKind } from '../model/curve';
import { hasKeys, isKeys, isStepped } from '../model/session';
import type { KeyKind } from '../model/session';
import './curve-editor';
import { Player } from './player';
import { timeLineStyle } from './time-line-style';

const kinds: readonly KeyKind[] = ['hold', 'linear', 'smooth'];

@customElement('time-line')
export class TimeLine extends StoreElement {
  static override styles = [shared, rangeStyle, timeLineStyle];

  @property({ attribute: false }) nextPicture!: () => Promise<void>;
  @state() private key = ''; // of the parameter whose curve is shown
  @state() private loop = { first: 0, last: 0 }; // places among the frames
  private player!: Player;

  override connectedCallback(): void {
    super.connectedCallback();
    this.player = new Player(this.store, () => this.nextPicture(), () => this.loop, () => this.requestUpdate());
    this.loop = { first: 0, last: this.store.frames.length - 1 };
    const { session } = this.store;
    this.key = focusParameters(session)?.point ?? session.parameters.find(({ type }) => hasKeys(type))?.key ?? '';
  }

  togglePlay(): void {
    this.player.toggle();
  }

  protected override render() {
    const { frames } = this.store;
    const first = frames[0] ?? 0;
    const last = frames.at(-1) ?? 0;
    const isShot = frames.length > 1;
    return html`<div class="bar">
        ${this.renderTransport()} <span class="space"></span> ${isShot ? this.renderKeys() : nothing}
      </div>
      <div class="frames">
        <input
          type="range"
          aria-label="Frame"
          min=${first}
          max=${Math.max(last, first)}
          step="1"
          ?disabled=${frames.length < 2}
          .value=${String(this.store.frame)}
          ${place({ '--share': String(last > first ? (this.store.frame - first) / (last - first) : 0) })}
          @input=${(event: Event) => this.scrub(Number((event.target as HTMLInputElement).value))}
        />
      </div>
      ${isShot
        ? html`<curve-editor
            .store=${this.store}
            key=${this.key}
            loopFirst=${frames[this.loop.first] ?? first}
            loopLast=${frames[this.loop.last] ?? last}
          ></curve-editor>`
        : nothing}`;
  }

  private renderTransport() {
    const { frames, frame, session } = this.store;
    const { isPlaying, dropped } = this.player;
    const go = (place: number) => () => this.store.setPlace(place);
    const icon = (path: string) => svg`<svg viewBox="0 0 14 14" aria-hidden="true"><path d=${path}></path></svg>`;
    const bound = (end: 'first' | 'last') => (event: Event) =>
      this.setLoop(end, (event.target as NumberField).value);
    return html`<div class="set" role="group" aria-label="Transport">
        <button class="bare" aria-label="First frame" title="First frame" @click=${go(this.loop.first)}>
          ${icon('M3 2v10M12 2 5 7l7 5Z')}
        </button>
        <button class="bare" aria-label="Previous frame" title="Previous frame (,)" @click=${go(this.store.place - 1)}>
          ${icon('M10 2 4 7l6 5')}
        </button>
        <button
          aria-label=${isPlaying ? 'Pause' : 'Play'}
          title="Play or pause (Space)"
          ?disabled=${frames.length < 2}
          @click=${this.togglePlay}
        >
          ${isPlaying ? icon('M4 2v10M10 2v10') : icon('M3 2v10l9-5Z')}
        </button>
        <button class="bare" aria-label="Next frame" title="Next frame (.)" @click=${go(this.store.place + 1)}>
          ${icon('M4 2l6 5-6 5')}
        </button>
      </div>
      <number-field
        class="frame"
        name="Frame number"
        .value=${frame}
        .minimum=${frames[0] ?? 0}
        .maximum=${frames.at(-1) ?? 0}
        @value=${(event: Event) => this.scrub((event.target as NumberField).value)}
      ></number-field>
      <div class="set" role="group" aria-label="Loop">
        <span class="dim">loop</span>
        <number-field name="Loop from" .value=${frames[this.loop.first] ?? 0} @value=${bound('first')}></number-field>
        <span class="dim">–</span>
        <number-field name="Loop to" .value=${frames[this.loop.last] ?? 0} @value=${bound('last')}></number-field>
      </div>
      <span class="dim numbers rate"
        >${session.picture.rate} fps${isPlaying || dropped > 0 ? html`, ${dropped} dropped` : nothing}</span
      >`;
  }

  private renderKeys() {
    const curve = this.store.curve(this.key);
    const parameter = this.store.parameter(this.key);
    if (curve === undefined || !parameter) return nothing;
    const here = keyAt(curve, this.store.frame);
    const frames = keysOf(curve).map((key) => key.frame);
    const before = frames.filter((frame) => frame < this.store.frame).at(-1);
    const after = frames.find((frame) => frame > this.store.frame);
    const go = (frame: number | undefined) => () => frame !== undefined && this.store.setFrame(frame);
    const setKind = (kind: KeyKind) => () => this.store.setCurve(this.key, withKind(curve, this.store.frame, kind));
    return html`<select
        aria-label="Curve of"
        @change=${(event: Event) => (this.key = (event.target as HTMLSelectElement).value)}
      >
        ${this.store.session.parameters
          .filter(({ type, key }) => hasKeys(type) && this.store.curve(key) !== undefined)
          .map(
            ({ key, name }) =>
              html`<option value=${key} .selected=${key === this.key}>
                ${name}${isKeys(this.store.curve(key)) ? ' ◆' : ''}
              </option>`,
          )}
      </select>
      <div class="set" role="group" aria-label="Keys">
        <button class="bare" aria-label="Previous key" title="Previous key" ?disabled=${before === undefined} @click=${go(before)}>‹</button>
        <button @click=${() => this.store.toggleKey(this.key)}>${here ? 'Delete key' : 'Add key'}</button>
        <button class="bare" aria-label="Next key" title="Next key" ?disabled=${after === undefined} @click=${go(after)}>›</button>
      </div>
      <div class="segments" role="group" aria-label="Kind of key">
        ${kinds.map(
          (kind) =>
            html`<button
              aria-pressed=${here?.key === kind}
              ?disabled=${!here || (isStepped(parameter.type) && kind !== 'hold')}
              @click=${setKind(kind)}
            >
              ${kind[0]?.toUpperCase()}${kind.slice(1)}
            </button>`,
        )}
      </div>`;
  }

  private nearest(frame: number): number {
    return this.store.frames.reduce((best, other) => (Math.abs(other - frame) < Math.abs(best - frame) ? other : best));
  }

  private scrub(frame: number): void {
    if (this.player.isPlaying) this.player.stop();
    this.store.setFrame(this.nearest(frame));
  }

  private setLoop(end: 'first' | 'last', frame: number): void {
    const place = this.store.frames.indexOf(this.nearest(frame));
    const loop = { ...this.loop, [end]: place };
    this.loop = { first: Math.min(loop.first, loop.last), last: Math.max(loop.first, loop.last) };
  }
}
