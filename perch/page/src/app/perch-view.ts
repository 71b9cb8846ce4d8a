// The page: puts the parts together and takes what happens in one to the others.
//
//   top-bar                      store: values, keys, looks, undo
//   picture-bar  | parameter-    renderer: picture for the newest values
//   picture-     |   panel       viewing: zoom, comparison
//     stage      | depth-
//   time-line    |   histogram
//   status-bar
import { LitElement, html, nothing } from 'lit';
import { customElement, property, query, state } from 'lit/decorators.js';
import '../controls/parameter-panel';
import '../depth/depth-histogram';
import { focusParameters, hasFocusView } from '../model/focus';
import type { PictureKind, PixelAnswer, State } from '../model/session';
import { Store } from '../model/store';
import { Viewing } from '../model/viewing';
import type { Place } from '../model/zoom';
import { FocusPicker } from '../picture/focus-picker';
import '../picture/picture-bar';
import '../picture/picture-stage';
import type { PictureStage, PixelEvent } from '../picture/picture-stage';
import { ApiError, api } from '../server/api';
import type { Picture } from '../server/api';
import { listen } from '../server/events';
import type { RenderNews } from '../server/events';
import { Renderer } from '../server/renderer';
import type { RendererView } from '../server/renderer';
import '../timeline/time-line';
import type { TimeLine } from '../timeline/time-line';
import { copyText, download } from './hand-over';
import './messages';
import type { MessageList } from './messages';
import './pick-target';
import './save-dialog';
import type { SaveDialog } from './save-dialog';
import { listenForShortcuts } from './shortcuts';
import { pageShortcuts } from './page-shortcuts';
import { Speedometer } from './speedometer';
import './status-bar';
import type { Speed } from './status-bar';
import { shared } from './theme';
import './top-bar';
import { viewStyle } from './view-style';

const longTime = 700; // ms of waiting for a picture, after which its progress is shown

// Of a render, where the program says nothing itself.
const ends: Readonly<Record<string, string>> = {
  done: 'The render is done.',
  cancelled: 'The render was cancelled.',
  failed: 'The render failed.',
};

@customElement('perch-view')
export class PerchView extends LitElement implements RendererView {
  static override styles = [shared, viewStyle];

  @property({ attribute: false }) store!: Store;
  viewing!: Viewing;
  renderer!: Renderer;
  private picker!: FocusPicker;
  private readonly speedometer = new Speedometer();

  @state() private isSettled = false;
  @state() private command = '';
  @state() private speed: Speed | null = null;
  @state() private news: RenderNews | null = null;
  @state() private rendered = 0;
  @state() private progress: number | null = null; // of a picture that is long in coming, 0 to 1
  @state() private bins: readonly number[] = [];
  @state() private at: Place | null = null;
  @state() private pixel: PixelAnswer | null = null;
  @query('picture-stage') private stage!: PictureStage;
  @query('time-line') timeLine!: TimeLine;
  @query('message-list') private messages!: MessageList;
  @query('save-dialog') private saveDialog!: SaveDialog;
  private isReading = false;
  private waitsSince = 0; // for a picture
  private histogramOf = '';
  private fetchingOriginal = false;
  private lookedAt = '';

  override connectedCallback(): void {
    super.connectedCallback();
    this.viewing = new Viewing(this.store.session.picture);
    this.renderer = new Renderer(api, this.store, this);
    this.picker = new FocusPicker(api, this.store, () => this.renderer.serial);
    this.command = this.store.session.state.command;
    this.viewing.addEventListener('change', () => this.looksElsewhere());
    listenForShortcuts(pageShortcuts(this));
    listen({
      progress: (serial, fraction) => this.takeProgress(serial, fraction),
      warning: (text) => this.messages.add({ kind: 'warning', text }),
      message: (text) => this.messages.add({ kind: 'message', text }),
      render: (news) => this.takeNews(news),
      end: () => this.messages.add({ kind: 'error', text: 'perch has ended; start it again to go on.' }),
    });
  }

  protected override firstUpdated(): void {
    for (const text of this.session.warnings) this.messages.add({ kind: 'warning', text });
    this.renderer.changed();
  }

  protected override render() {
    const { store, viewing, session } = this;
    return html`<header>
        <top-bar
        .store=${store}
        .news=${this.news}
        rendered=${this.rendered}
        @copy-command=${this.copyCommand}
        @save-preset=${this.savePreset}
        @load-preset=${(event: CustomEvent<string>) =>
          this.attempt(async () => store.load(await api.loadPreset(event.detail)))}
        @render=${this.startRender}
        @cancel-render=${() => this.attempt(() => api.cancelRender())}
      ></top-bar>
      </header>
      <main>
        <section class="picture" aria-label="Picture and its view">
          <picture-bar .viewing=${viewing} ?hasFocusView=${hasFocusView(session)}></picture-bar>
          <div class="stage">
            <picture-stage
              .store=${store}
              .viewing=${viewing}
              ?isSettled=${this.isSettled}
              @hover=${(event: CustomEvent<Place | null>) => this.hover(event.detail)}
              @pick=${(event: CustomEvent<Place>) => this.attempt(() => this.picker.pick(event.detail))}
              @span=${(event: CustomEvent<PixelEvent>) =>
                this.attempt(() => this.picker.pickSpan(event.detail.from, event.detail.to))}
            ></picture-stage>
            <message-list></message-list>
          </div>
        </section>
        <aside aria-label="Parameters">
          <parameter-panel .store=${store}></parameter-panel>
          ${session.layers.length > 0 || focusParameters(session)
            ? html`<pick-target .store=${store} .picker=${this.picker}></pick-target>
                <depth-histogram .store=${store} .bins=${this.bins}></depth-histogram>`
            : nothing}
        </aside>
      </main>
      <section class="time ${store.frames.length > 1 ? '' : 'still'}" aria-label="Timeline">
        <time-line .store=${store} .nextPicture=${() => this.renderer.nextPicture()}></time-line>
      </section>
      <footer>
        <status-bar .at=${this.at} .pixel=${this.pixel} command=${this.command} .speed=${this.speed} .progress=${this.progress}></status-bar>
      </footer>
      <save-dialog></save-dialog>`;
  }

  private get session() {
    return this.store.session;
  }

  // What the renderer asks and tells.

  wishes() {
    const { comparison, shownSize } = this.viewing;
    const kinds: PictureKind[] = comparison === 'side' || comparison === 'overlay' ? ['result', 'focus'] : ['result'];
    return { kinds, ...shownSize };
  }

  async paint(picture: Picture, changedAt: number): Promise<void> {
    const begin = performance.now();
    this.progress = null;
    this.waitsSince = begin;
    await this.stage.paint(picture);
    if (picture.kind === 'result')
      this.speed = this.speedometer.take(picture, changedAt, performance.now() - begin) ?? this.speed;
    this.messages.clearOfPictures();
  }

  moves(): void {
    if (this.isSettled) this.waitsSince = performance.now();
    this.isSettled = false;
    if (this.viewing.isOriginalHeld || this.viewing.comparison === 'wipe') void this.fetchOriginal();
  }

  settles(): void {
    this.isSettled = true;
    this.progress = null;
    void this.fetchOriginal();
    void this.fetchHistogram();
    if (this.at) void this.readPixel();
  }

  answers(state: State): void {
    this.command = state.command;
  }

  fails(error: ApiError): void {
    this.report(error, true);
  }

  // A comparison or zoom may need other pictures than those at hand.
  private looksElsewhere(): void {
    const { kinds, width, height } = this.wishes();
    const looksAt = `${kinds.join()} ${width}x${height}`;
    const isNew = looksAt !== this.lookedAt;
    this.lookedAt = looksAt;
    if (isNew && this.stage) this.renderer.changed();
    if (this.viewing.isOriginalHeld || this.viewing.comparison === 'wipe') void this.fetchOriginal();
  }

  // The original depends on the frame alone.
  private async fetchOriginal(): Promise<void> {
    const frame = this.store.frame;
    if (this.fetchingOriginal || this.originalFrame === frame || this.renderer.serial === 0) return;
    this.fetchingOriginal = true;
    try {
      const wish = { serial: this.renderer.serial, kind: 'original' } as const;
      await this.stage.paint(await api.picture(wish, new AbortController().signal));
      this.originalFrame = frame;
    } catch (error) {
      if (!(error instanceof ApiError && error.status === 409)) this.report(error, true);
    } finally {
      this.fetchingOriginal = false;
    }
  }

  private originalFrame: number | null = null;

  private async fetchHistogram(): Promise<void> {
    const curves = this.session.parameters
      .filter(({ type }) => type === 'layer' || type === 'popup')
      .map(({ key }) => this.store.value(key));
    const of = JSON.stringify([this.store.frame, curves]);
    if (of === this.histogramOf || this.session.layers.length === 0) return;
    this.histogramOf = of;
    try {
      this.bins = (await api.histogram(this.store.frame)).bins;
    } catch {
      this.bins = []; // the layer's file cannot be read, which the picture's error tells
    }
  }

  private hover(at: Place | null): void {
    this.at = at;
    if (at) void this.readPixel();
  }

  // One pixel is asked for at a time; the newest place wins.
  private async readPixel(): Promise<void> {
    if (this.isReading) return;
    this.isReading = true;
    try {
      for (let read: Place | null = null; this.at && read !== this.at; ) {
        read = this.at;
        const pixel = await this.picker.read(read);
        this.pixel = { ...pixel, result: pixel.result ?? this.resultAt(read, pixel.depth) };
      }
    } catch {
      this.pixel = null;
    } finally {
      this.isReading = false;
    }
  }

  // The page has pictures of 8 bits.
  private resultAt({ x, y }: Place, depth: number): readonly number[] | null {
    const picture = this.stage.picture('result');
    if (depth !== 8 || !picture?.isFull || !(picture.image instanceof ImageData)) return null;
    const first = (y * picture.width + x) * 4;
    return [...picture.image.data.subarray(first, first + 4)];
  }

  private async startRender(): Promise<void> {
    await this.attempt(async () => {
      await api.render();
      this.news = { state: 'running' };
    });
  }

  private async copyCommand(): Promise<void> {
    await this.attempt(async () => {
      const { command } = await api.state();
      const text = (await copyText(command))
        ? 'The command is copied.'
        : 'The browser does not let the page copy. A click selects the command at the bottom of the page.';
      this.messages.add({ kind: 'message', text });
    });
  }

  private async savePreset(): Promise<void> {
    if (this.session.canSave) this.saveDialog.ask(async (name) => void (await api.savePreset(name)));
    else await this.attempt(async () => download('look.json', await api.preset()));
  }

  private takeProgress(serial: number, fraction: number): void {
    const isLong = performance.now() > this.waitsSince + longTime;
    if (isLong && !this.isSettled && serial === this.renderer.serial) this.progress = fraction;
  }

  private takeNews(news: RenderNews): void {
    this.news = news;
    if (news.state !== 'running') this.rendered = 0;
    else if (news.progress?.frame !== undefined) this.rendered += 1;
    const text = news.text || ends[news.state];
    if (text && news.state !== 'running')
      this.messages.add({ kind: news.state === 'failed' ? 'error' : 'message', text });
  }

  private async attempt(action: () => Promise<unknown>): Promise<void> {
    try {
      await action();
    } catch (error) {
      this.report(error);
    }
  }

  private report(error: unknown, isOfPicture = false): void {
    const { frame, message, command } = error instanceof ApiError ? error : new ApiError(0, String(error));
    const where = frame === null || message.includes('frame') ? '' : `frame ${frame}: `;
    this.messages.add({ kind: 'error', text: where + message, command, isOfPicture });
  }
}
