// How often each value of the layer occurs in the frame, far to the left, with the sharp band over it.
//
//        .:|                    drag the band: Focal Point
//      .:||||:.     __:.        drag an edge: In-focus Range
//   [  |  band |  ]
import { css, html, nothing, svg } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import type { PropertyValues } from 'lit';
import { drag } from '../app/drag';
import { place } from '../app/place';
import { StoreElement } from '../app/store-element';
import { shared } from '../app/theme';
import { bandOf, focusParameters } from '../model/focus';
import { clamped, rounded, shown } from '../model/number';

const height = 64;

@customElement('depth-histogram')
export class DepthHistogram extends StoreElement {
  static override styles = [
    shared,
    css`
      :host {
        padding: 8px 12px 10px;
        border-top: 1px solid var(--line);
      }
      header,
      footer {
        display: flex;
        justify-content: space-between;
      }
      h2 {
        margin: 0 0 6px;
        font: inherit;
        font-weight: 600;
      }
      .plot {
        position: relative;
        height: 64px;
        background: var(--well);
        border: 1px solid var(--line);
        border-radius: 3px;
        overflow: hidden;
        touch-action: none;
      }
      svg {
        display: block;
        width: 100%;
        height: 100%;
        fill: var(--dim);
      }
      .band {
        position: absolute;
        top: 0;
        bottom: 0;
        min-width: 1px;
        background: color-mix(in srgb, var(--accent) 28%, transparent);
        cursor: grab;
      }
      .line,
      .edge {
        position: absolute;
        top: 0;
        bottom: 0;
        width: 11px;
        margin-left: -5.5px;
      }
      .line {
        background: linear-gradient(var(--accent), var(--accent)) center / 2px 100% no-repeat;
        cursor: grab;
      }
      .edge {
        background: linear-gradient(var(--accent), var(--accent)) center / 1px 100% no-repeat;
        cursor: ew-resize;
      }
    `,
  ];

  @property({ attribute: false }) bins: readonly number[] = [];

  private outline = '';

  protected override willUpdate(changed: PropertyValues): void {
    if (changed.has('bins')) this.outline = outlineOf(this.bins);
  }

  protected override render() {
    const focus = focusParameters(this.store.session);
    if (!focus) return nothing;
    const point = this.store.number(focus.point) ?? 0;
    const range = focus.range ? (this.store.number(focus.range) ?? 0) : 0;
    const isInverted = focus.invert !== null && this.store.value(focus.invert) === true;
    const { from, to } = bandOf(point, range, isInverted);
    const centre = isInverted ? 1 - point / 100 : point / 100;
    const at = (share: number) => `${share * 100}%`;
    const grab = (part: 'point' | 'range') => (event: PointerEvent) => this.grab(event, part, centre);
    return html`<header>
        <h2>Depth</h2>
        <span class="dim numbers">sharp ${shown(from * 100, 1)} – ${shown(to * 100, 1)} %</span>
      </header>
      <div class="plot" role="img" aria-label="Depth histogram, sharp from ${shown(from * 100, 1)} to ${shown(to * 100, 1)} per cent">
        ${svg`<svg viewBox="0 0 256 ${height}" preserveAspectRatio="none" aria-hidden="true"><path d=${this.outline}></path></svg>`}
        <span class="band" ${place({ left: at(from), width: at(to - from) })} @pointerdown=${grab('point')}></span>
        ${focus.range
          ? html`<span class="edge" ${place({ left: at(from) })} @pointerdown=${grab('range')}></span>
              <span class="edge" ${place({ left: at(to) })} @pointerdown=${grab('range')}></span>`
          : nothing}
        ${range * 2 < 8
          ? html`<span class="line" ${place({ left: at(centre) })} @pointerdown=${grab('point')}></span>`
          : nothing}
      </div>
      <footer class="dim numbers"><span>0</span><span>50</span><span>100 %</span></footer>`;
  }

  private grab(event: PointerEvent, part: 'point' | 'range', centre: number): void {
    const focus = focusParameters(this.store.session);
    if (!focus) return;
    event.preventDefault();
    const grip = event.currentTarget as HTMLElement;
    const { left, width } = (grip.parentElement as HTMLElement).getBoundingClientRect();
    const offset = part === 'point' ? centre - (event.clientX - left) / width : 0;
    const gesture = `depth ${event.timeStamp}`;
    const isInverted = focus.invert !== null && this.store.value(focus.invert) === true;
    const move = ({ clientX }: PointerEvent) => {
      const share = clamped((clientX - left) / width + offset, 0, 1);
      const name = part === 'point' ? focus.point : (focus.range as string);
      const value = part === 'range' ? Math.abs(share - centre) : isInverted ? 1 - share : share;
      this.store.setValue(name, rounded(value * 100, 1), gesture);
    };
    drag(move, () => this.store.endGesture());
  }
}

// Square roots, so that small things in the frame are seen beside a large background.
function outlineOf(bins: readonly number[]): string {
  const most = Math.sqrt(Math.max(...bins.slice(1, -1), 1));
  const tops = bins.map((count, i) => {
    const y = height - Math.min(Math.sqrt(count) / most, 1) * (height - 3);
    return `L${i} ${y.toFixed(1)}H${i + 1}`;
  });
  return `M0 ${height}${tops.join('')}V${height}Z`;
}
