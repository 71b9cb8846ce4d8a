// The picture itself: the result, alone or beside or behind what it is compared with.
//
//   +-- viewport (neutral grey) -------------+
//   |   +-- sheet: the picture's box ----+   |      canvases on the sheet, bottom to top:
//   |   |  result                        |   |      result, focus (overlay), original (left of the divider,
//   |   +--------------------------------+   |      or all while its key is held)
//   +----------------------------------------+
import { html, nothing } from 'lit';
import { customElement, property, query, queryAll, state } from 'lit/decorators.js';
import { Follow } from '../app/follow';
import { place } from '../app/place';
import { StoreElement } from '../app/store-element';
import { shared } from '../app/theme';
import type { PictureKind } from '../model/session';
import type { Viewing } from '../model/viewing';
import { pixelAt, toPicture } from '../model/zoom';
import type { Place } from '../model/zoom';
import type { Picture } from '../server/api';
import { Gestures } from './gestures';
import { paintOn } from './paint';
import { stageKey } from './stage-keys';
import { stageStyle } from './stage-style';
import './point-handles';
import './wipe-divider';

export interface PixelEvent {
  readonly from: Place;
  readonly to: Place;
}

@customElement('picture-stage')
export class PictureStage extends StoreElement {
  static override styles = [shared, stageStyle];

  @property({ attribute: false }) viewing!: Viewing;
  @property({ type: Boolean }) isSettled = false;
  @state() cursor: Place | null = null; // moved by keys, in pixels of the picture
  @state() mark: Place | null = null; // where a span of keys began
  @state() private span: PixelEvent | null = null;
  @query('.pane') private pane!: HTMLElement;
  @queryAll('canvas') private canvases!: NodeListOf<HTMLCanvasElement>;
  private readonly pictures = new Map<PictureKind, Picture>();
  private paints = 0;
  private readonly measure = new ResizeObserver(() => this.resize());

  // Draws the picture; comes back when the screen shows it.
  async paint(picture: Picture): Promise<void> {
    const before = this.pictures.get(picture.kind)?.image;
    this.pictures.set(picture.kind, picture);
    if (picture.kind === 'result') this.paints += 1;
    this.requestUpdate();
    await this.updateComplete;
    if (before instanceof ImageBitmap) before.close(); // megabytes, which would wait for the collector
    await new Promise((done) => requestAnimationFrame(done));
  }

  picture(kind: PictureKind): Picture | undefined {
    return this.pictures.get(kind);
  }

  constructor() {
    super();
    new Follow(this, () => this.viewing);
  }

  override disconnectedCallback(): void {
    super.disconnectedCallback();
    this.measure.disconnect();
  }

  protected override firstUpdated(): void {
    this.measure.observe(this.pane);
    new Gestures(this.shadowRoot?.querySelector('.viewport') as HTMLElement, {
      hover: (at) => this.tell('hover', at && this.pixel(at)),
      click: (at) => this.tell('pick', this.pixel(at)),
      pan: (byX, byY) => this.viewing.pan(byX, byY),
      zoom: (factor, at) => this.viewing.zoom(factor, this.inPane(at)),
      span: (from, to, isDone) => this.dragSpan(from, to, isDone),
    });
  }

  protected override updated(): void {
    for (const canvas of this.canvases) {
      const picture = this.pictures.get(canvas.dataset.kind as PictureKind);
      if (picture) paintOn(canvas, picture);
    }
  }

  protected override render() {
    const { comparison } = this.viewing;
    return html`<div
      class="viewport"
      role="group"
      tabindex="0"
      aria-label="Picture"
      aria-description="Arrow keys move the cross, Enter focuses there, Shift+Enter marks near and then far"
      @keydown=${(event: KeyboardEvent) => stageKey(this, event)}
    >
      ${this.renderPane('result')} ${comparison === 'side' ? this.renderPane('focus') : nothing}
    </div>`;
  }

  private renderPane(kind: 'result' | 'focus') {
    const { box, behind, comparison, wipe, isOriginalHeld, view } = this.viewing;
    const isMain = kind === 'result';
    const original = isMain && (isOriginalHeld || comparison === 'wipe');
    const clip = isOriginalHeld ? 'none' : `inset(0 ${100 - wipe * 100}% 0 0)`;
    const sheet = {
      left: `${box.x}px`,
      top: `${box.y}px`,
      width: `${box.width}px`,
      height: `${box.height}px`,
      'image-rendering': view.scale * devicePixelRatio >= 2 ? 'pixelated' : 'auto',
    };
    return html`<div class="pane">
      <div class="sheet ${behind}" ${place(sheet)}>
        ${isMain
          ? html`<canvas
              role="img"
              aria-label="Result"
              data-kind="result"
              data-serial=${this.paints}
              data-shows=${this.pictures.get('result')?.serial ?? 0}
              data-state=${this.isSettled ? 'settled' : 'moving'}
            ></canvas>`
          : html`<canvas role="img" aria-label="Focus" data-kind="focus"></canvas>`}
        ${isMain && comparison === 'overlay'
          ? html`<canvas class="overlay" role="img" aria-label="Focus" data-kind="focus"></canvas>`
          : nothing}
        <canvas
          class=${behind}
          role="img"
          aria-label="Original"
          data-kind="original"
          ?hidden=${!original}
          ${place({ 'clip-path': clip })}
        ></canvas>
      </div>
      ${isMain ? this.renderOver() : html`<span class="label">Focus</span>`}
    </div>`;
  }

  // What lies over the picture and does not grow with it.
  private renderOver() {
    const { viewing, store, cursor, span } = this;
    const { comparison, isOriginalHeld } = viewing;
    return html`${comparison === 'wipe' && !isOriginalHeld
      ? html`<wipe-divider .viewing=${viewing}></wipe-divider>`
      : nothing}
    ${isOriginalHeld ? html`<span class="label">Original</span>` : nothing}
    <point-handles .store=${store} .viewing=${viewing}></point-handles>
    ${cursor ? html`<span class="cursor" ${place(this.onPane(cursor))}></span>` : nothing}
    ${this.mark ? html`<span class="cursor mark" ${place(this.onPane(this.mark))}></span>` : nothing}
    ${span
      ? html`<svg class="span" aria-hidden="true">
          <line x1=${span.from.x} y1=${span.from.y} x2=${span.to.x} y2=${span.to.y}></line>
        </svg>`
      : nothing}`;
  }

  private onPane({ x, y }: Place): Record<string, string> {
    const { box, view } = this.viewing;
    return { left: `${box.x + (x + 0.5) * view.scale}px`, top: `${box.y + (y + 0.5) * view.scale}px` };
  }

  // With two panes a place in the second means the same pixel as in the first.
  private inPane(at: Place): Place {
    const { width } = this.viewing.window;
    return this.viewing.comparison === 'side' && at.x > width ? { x: at.x - width - 1, y: at.y } : at;
  }

  private pixel(at: Place): Place | null {
    const { view, picture, window } = this.viewing;
    return pixelAt(toPicture(view, picture, window, this.inPane(at)), picture);
  }

  private dragSpan(from: Place, to: Place, isDone: boolean): void {
    this.span = isDone ? null : { from, to };
    const ends = { from: this.pixel(from), to: this.pixel(to) };
    if (isDone && ends.from && ends.to) this.tell('span', ends);
  }

  tell(name: string, detail: unknown): void {
    if (detail !== null || name === 'hover') this.dispatchEvent(new CustomEvent(name, { detail }));
  }

  private resize(): void {
    const { width, height } = this.pane.getBoundingClientRect();
    this.viewing.set({ window: { width, height } });
  }
}
