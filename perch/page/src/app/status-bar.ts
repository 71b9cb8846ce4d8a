// The line at the bottom: the pixel under the pointer, the command, the speed.
import { LitElement, css, html, nothing } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import { shown } from '../model/number';
import type { PixelAnswer } from '../model/session';
import type { Place } from '../model/zoom';
import type { Times } from '../server/api';
import { shared } from './theme';

export interface Speed extends Times {
  readonly paint: number;
  readonly perSecond: number;
  readonly latency: number; // from the change to the painted picture
}

@customElement('status-bar')
export class StatusBar extends LitElement {
  static override styles = [
    shared,
    css`
      :host {
        display: flex;
        gap: 16px;
        align-items: center;
        height: 26px;
        padding: 0 8px;
        border-top: 1px solid var(--line);
        font-variant-numeric: tabular-nums;
        white-space: nowrap;
        overflow: hidden;
      }
      .read {
        display: flex;
        gap: 12px;
        flex: none;
        min-width: 330px;
      }
      code {
        flex: 1;
        min-width: 0;
        overflow: hidden;
        text-overflow: ellipsis;
        font: var(--mono);
        color: var(--dim);
        user-select: all;
      }
      progress {
        width: 90px;
        height: 6px;
        accent-color: var(--accent);
      }
      .speed {
        flex: none;
        color: var(--dim);
      }
    `,
  ];

  @property({ attribute: false }) at: Place | null = null;
  @property({ attribute: false }) pixel: PixelAnswer | null = null;
  @property() command = '';
  @property({ attribute: false }) speed: Speed | null = null;
  @property({ attribute: false }) progress: number | null = null;

  protected override render() {
    return html`<span class="read" aria-label="Pixel" role="group">${this.renderPixel()}</span>
      <code aria-label="Command" role="group" title=${this.command}>${this.command}</code>
      ${this.progress === null ? this.renderSpeed() : this.renderProgress(this.progress)}`;
  }

  private renderPixel() {
    const { at, pixel } = this;
    if (!at) return html`<span class="dim">Click to focus, Shift-drag from near to far</span>`;
    if (!pixel) return html`<span>${at.x}, ${at.y}</span>`;
    const { source, result, value, distance } = pixel;
    return html`<span>${at.x}, ${at.y}</span>
      <span><span class="dim">source</span> ${source.join(' ')}</span>
      ${result ? html`<span><span class="dim">result</span> ${result.join(' ')}</span>` : nothing}
      ${value === null ? nothing : html`<span><span class="dim">depth</span> ${shown(value, 2)} %</span>`}
      ${distance === null ? nothing : html`<span><span class="dim">distance</span> ${shown(distance, 2)}</span>`}`;
  }

  private renderProgress(progress: number) {
    return html`<progress aria-label="Picture under way" max="1" value=${progress}></progress>
      <span class="numbers">${Math.floor(progress * 100)} %</span>`;
  }

  private renderSpeed() {
    const { speed } = this;
    if (!speed) return nothing;
    const { render, encode, transfer, paint, latency } = speed;
    const rate = speed.perSecond >= 2 ? `, ${Math.round(speed.perSecond)}/s` : '';
    const part = (name: string, time: number) => `${name} ${time.toFixed(0)}`;
    return html`<span class="speed" title="Milliseconds from the change to the picture: ${latency.toFixed(0)}"
      >${[part('render', render), part('encode', encode), part('transfer', transfer), part('paint', paint)].join(' · ')}
      ms${rate}</span
    >`;
  }
}
